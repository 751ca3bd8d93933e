#pragma once

#include <QColor>
#include <QString>
#include <optional>

// Colours as the message stores them: a 24-bit number with red in the low
// byte, so 255 is red and 16777215 white.
class StoredColor {
public:
    static QColor toQColor(qint64 stored);
    static qint64 fromQColor(const QColor& color);
    // "RRGGBB" or "#RRGGBB", red first as people write colours.
    static std::optional<qint64> fromHex(const QString& text);
    static QString toHex(qint64 stored);
};
