#include "StoredColor.h"

QColor StoredColor::toQColor(qint64 stored) {
    return QColor(int(stored & 0xFF), int((stored >> 8) & 0xFF), int((stored >> 16) & 0xFF));
}

qint64 StoredColor::fromQColor(const QColor& color) {
    return qint64(color.red()) | (qint64(color.green()) << 8) | (qint64(color.blue()) << 16);
}

std::optional<qint64> StoredColor::fromHex(const QString& text) {
    const QString digits = text.startsWith(QLatin1Char('#')) ? text.mid(1) : text;
    bool ok = false;
    const uint rgb = digits.toUInt(&ok, 16);
    if (!ok || digits.size() != 6)
        return std::nullopt;
    return fromQColor(QColor::fromRgb(rgb));
}

QString StoredColor::toHex(qint64 stored) {
    return toQColor(stored).name(QColor::HexRgb).toUpper();
}
