#include "WspWriter.h"

namespace {
constexpr quint8 utf8MibEnum = 106;
constexpr char textQuote = 0x7F;
constexpr char lengthQuote = 0x1F;
constexpr quint32 maxShortLength = 30;

// Printable ASCII only: a leading control byte would read as a value-length and
// a leading 0x7F as a quote, so such texts take the charset form as well.
bool isPlainText(const QString& text) {
    for (QChar c : text) {
        if (c.unicode() < 0x20 || c.unicode() >= 0x7F)
            return false;
    }
    return true;
}
} // namespace

namespace WspWriter {

QByteArray shortInteger(quint8 value) {
    Q_ASSERT(value < 0x80);
    return QByteArray(1, char(0x80 | value));
}

QByteArray longInteger(quint64 value) {
    QByteArray digits;
    do {
        digits.prepend(char(value & 0xFF));
        value >>= 8;
    } while (value != 0);
    return char(digits.size()) + digits;
}

QByteArray uintvar(quint32 value) {
    QByteArray bytes(1, char(value & 0x7F));
    for (value >>= 7; value != 0; value >>= 7)
        bytes.prepend(char(0x80 | (value & 0x7F)));
    return bytes;
}

QByteArray valueLength(quint32 length) {
    if (length <= maxShortLength)
        return QByteArray(1, char(length));
    return lengthQuote + uintvar(length);
}

QByteArray withValueLength(const QByteArray& value) {
    return valueLength(quint32(value.size())) + value;
}

QByteArray textString(const QByteArray& text) {
    QByteArray bytes = text;
    bytes.replace('\0', QByteArray());
    if (!bytes.isEmpty() && quint8(bytes.front()) >= quint8(textQuote))
        bytes.prepend(textQuote);
    return bytes + '\0';
}

QByteArray quotedString(const QByteArray& text) {
    QByteArray bytes = text;
    bytes.replace('\0', QByteArray());
    return '"' + bytes + '\0';
}

QByteArray encodedStringValue(const QString& text) {
    if (isPlainText(text))
        return textString(text.toLatin1());
    return withValueLength(shortInteger(utf8MibEnum) + textString(text.toUtf8()));
}

} // namespace WspWriter
