#include "SmilTime.h"

#include <QRegularExpression>
#include <cmath>

namespace {
std::optional<qint64> checked(double ms) {
    if (!std::isfinite(ms) || ms < 0 || ms > double(SmilTime::kMaxMs))
        return std::nullopt;
    return qint64(std::llround(ms));
}

// "hh:mm:ss(.f)" or "mm:ss(.f)", minutes and seconds below 60.
std::optional<qint64> clockValue(const QString& text) {
    static const QRegularExpression clock(
        QStringLiteral("^(?:(\\d+):)?([0-5]?\\d):([0-5]\\d(?:\\.\\d+)?)$"));
    const QRegularExpressionMatch match = clock.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const double hours = match.captured(1).isEmpty() ? 0 : match.captured(1).toDouble();
    const double seconds =
        (hours * 60 + match.captured(2).toDouble()) * 60 + match.captured(3).toDouble();
    return checked(seconds * 1000);
}

// A number with an optional unit: h, min, s or ms; seconds without one.
std::optional<qint64> timecount(const QString& text) {
    static const QRegularExpression count(
        QStringLiteral("^(\\d+(?:\\.\\d+)?|\\.\\d+)(h|min|s|ms)?$"));
    const QRegularExpressionMatch match = count.match(text);
    if (!match.hasMatch())
        return std::nullopt;
    const double value = match.captured(1).toDouble();
    const QString unit = match.captured(2);
    if (unit == QLatin1String("ms"))
        return checked(value);
    if (unit == QLatin1String("min"))
        return checked(value * 60 * 1000);
    if (unit == QLatin1String("h"))
        return checked(value * 60 * 60 * 1000);
    return checked(value * 1000);
}
} // namespace

std::optional<qint64> SmilTime::parse(const QString& text) {
    const QString value = text.trimmed();
    if (value.contains(u':'))
        return clockValue(value);
    return timecount(value);
}

bool SmilTime::isIndefinite(const QString& text) {
    return text.trimmed() == QLatin1String("indefinite");
}
