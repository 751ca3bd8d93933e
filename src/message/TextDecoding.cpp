#include "TextDecoding.h"

#include <QStringDecoder>
#include <array>

namespace {
// 0x80..0x9F of the Western Windows code page; 0 where the code page leaves a
// byte unassigned, which then keeps its Latin-1 meaning.
constexpr std::array<char16_t, 32> kHighControls{
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

bool startsWith(const QByteArray& bytes, std::initializer_list<unsigned char> mark) {
    if (bytes.size() < qsizetype(mark.size()))
        return false;
    qsizetype at = 0;
    for (const unsigned char byte : mark)
        if (static_cast<unsigned char>(bytes[at++]) != byte)
            return false;
    return true;
}

QString decodeWith(QStringConverter::Encoding encoding, const QByteArray& bytes) {
    QStringDecoder decoder(encoding);
    return decoder.decode(bytes);
}
} // namespace

QString TextDecoding::decode(const QByteArray& bytes) {
    if (startsWith(bytes, {0xEF, 0xBB, 0xBF}))
        return decodeWith(QStringConverter::Utf8, bytes.mid(3));
    if (startsWith(bytes, {0xFF, 0xFE}))
        return decodeWith(QStringConverter::Utf16LE, bytes.mid(2));
    if (startsWith(bytes, {0xFE, 0xFF}))
        return decodeWith(QStringConverter::Utf16BE, bytes.mid(2));
    QStringDecoder utf8(QStringConverter::Utf8);
    const QString text = utf8.decode(bytes);
    return utf8.hasError() ? windows1252(bytes) : text;
}

QString TextDecoding::windows1252(const QByteArray& bytes) {
    QString text;
    text.reserve(bytes.size());
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        const char16_t mapped = byte >= 0x80 && byte < 0xA0 ? kHighControls[byte - 0x80] : 0;
        text += QChar(mapped ? mapped : char16_t(byte));
    }
    return text;
}
