#include "VbFormat.h"

#include <QLocale>
#include <cmath>

namespace {
QString& storedSeparator() {
    static QString separator = QStringLiteral(".");
    return separator;
}

bool isDigitPlaceholder(QChar c) {
    return c == QLatin1Char('0') || c == QLatin1Char('#');
}

struct Pattern {
    QString prefix;
    QString suffix;
    int minIntegerDigits = 0;
    int minDecimals = 0;
    int maxDecimals = 0;
    bool hasPoint = false;
};

Pattern parse(const QString& text) {
    Pattern p;
    qsizetype i = 0;
    while (i < text.size() && !isDigitPlaceholder(text[i]) && text[i] != QLatin1Char('.'))
        p.prefix += text[i++];
    for (; i < text.size() && isDigitPlaceholder(text[i]); ++i)
        p.minIntegerDigits += text[i] == QLatin1Char('0') ? 1 : 0;
    if (i < text.size() && text[i] == QLatin1Char('.')) {
        p.hasPoint = true;
        for (++i; i < text.size() && isDigitPlaceholder(text[i]); ++i) {
            ++p.maxDecimals;
            if (text[i] == QLatin1Char('0'))
                p.minDecimals = p.maxDecimals;
        }
    }
    p.suffix = text.mid(i);
    return p;
}
} // namespace

QString VbFormat::format(double value, const QString& pattern) {
    return format(value, pattern, storedSeparator());
}

QString VbFormat::seconds(std::int64_t milliseconds, const QString& pattern) {
    return format(double(milliseconds) / 1000.0, pattern) + u's';
}

QString VbFormat::format(double value, const QString& pattern, const QString& decimalSeparator) {
    const Pattern p = parse(pattern);
    // Shown numbers round half away from zero.
    const double scale = std::pow(10.0, p.maxDecimals);
    const double rounded = std::round(std::fabs(value) * scale) / scale;
    QString digits = QString::number(rounded, 'f', p.maxDecimals);
    QString integer = digits.section(QLatin1Char('.'), 0, 0);
    QString fraction = digits.section(QLatin1Char('.'), 1);
    while (fraction.size() > p.minDecimals && fraction.endsWith(QLatin1Char('0')))
        fraction.chop(1);
    if (integer == QLatin1String("0") && p.minIntegerDigits == 0)
        integer.clear();
    integer = integer.rightJustified(p.minIntegerDigits, QLatin1Char('0'));
    const bool negative = value < 0 && (rounded != 0.0);
    QString out = p.prefix + (negative ? QStringLiteral("-") : QString()) + integer;
    if (p.hasPoint && (!fraction.isEmpty() || p.maxDecimals == 0))
        out += decimalSeparator + fraction;
    return out + p.suffix;
}

std::int64_t VbFormat::toInteger(const QString& text, bool* ok) {
    bool parsed = false;
    double value = text.trimmed().toDouble(&parsed);
    if (!parsed)
        value = QLocale().toDouble(text.trimmed(), &parsed);
    // Like the conversion it stands for, a number beyond the range is no number.
    constexpr double limit = 9.2e18;
    parsed = parsed && std::isfinite(value) && std::fabs(value) < limit;
    if (ok)
        *ok = parsed;
    return parsed ? static_cast<std::int64_t>(std::nearbyint(value)) : 0;
}

void VbFormat::setDecimalSeparator(const QString& separator) {
    storedSeparator() = separator;
}

QString VbFormat::decimalSeparator() {
    return storedSeparator();
}
