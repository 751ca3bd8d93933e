#include "TextDecoder.h"

#include <QRegularExpression>
#include <QStringDecoder>

#include <array>
#include <optional>

namespace {
// Windows-1252 differs from Latin-1 only in 0x80..0x9F, where Latin-1 has
// control characters. The five bytes the code page leaves free stay as they are.
constexpr std::array<char16_t, 32> kWindows1252High = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

QString fromWindows1252(const QByteArray& bytes) {
    QString text(bytes.size(), Qt::Uninitialized);
    QChar* out = text.data();
    for (const char byte : bytes) {
        const auto value = static_cast<unsigned char>(byte);
        *out++ =
            (value >= 0x80 && value < 0xA0) ? QChar(kWindows1252High[value - 0x80]) : QChar(value);
    }
    return text;
}

bool isWindows1252(const QString& name) {
    static const QStringList names{"windows-1252", "cp1252", "x-cp1252", "ms-ansi"};
    return names.contains(name.trimmed(), Qt::CaseInsensitive);
}

// The text in the named charset; nothing when the name is one we do not know.
std::optional<QString> inCharset(const QByteArray& bytes, const QString& charset) {
    if (isWindows1252(charset))
        return fromWindows1252(bytes);
    QStringDecoder decoder(charset.trimmed().toLatin1().constData());
    if (!decoder.isValid())
        return std::nullopt;
    return QString(decoder.decode(bytes));
}

struct Mark {
    QByteArrayView bytes;
    QStringConverter::Encoding encoding;
};

constexpr std::array<Mark, 3> kMarks = {{{"\xEF\xBB\xBF", QStringConverter::Utf8},
                                         {"\xFF\xFE", QStringConverter::Utf16LE},
                                         {"\xFE\xFF", QStringConverter::Utf16BE}}};

// The text after a byte-order mark, decoded by it; nothing without one.
std::optional<QString> byMark(const QByteArray& bytes) {
    for (const Mark& mark : kMarks)
        if (bytes.startsWith(mark.bytes)) {
            QStringDecoder decoder(mark.encoding);
            return QString(decoder.decode(bytes.mid(mark.bytes.size())));
        }
    return std::nullopt;
}

// "UTF-16" and UCS-2 leave the byte order to a mark. Without one the order
// is the one whose high bytes are zero more often, as they are for Latin
// letters; big-endian when that tells nothing, as the standard has it.
bool leavesByteOrderOpen(const QString& name) {
    static const QStringList names{"utf-16", "utf16", "ucs-2", "iso-10646-ucs-2", "csunicode"};
    return names.contains(name.trimmed(), Qt::CaseInsensitive);
}

QString utf16InEitherOrder(const QByteArray& bytes) {
    if (std::optional<QString> text = byMark(bytes))
        return *text;
    std::array<qsizetype, 2> zeros{0, 0};
    for (qsizetype i = 0; i < bytes.size(); ++i)
        if (bytes[i] == '\0')
            ++zeros[i % 2];
    QStringDecoder decoder(zeros[1] > zeros[0] ? QStringConverter::Utf16LE
                                               : QStringConverter::Utf16BE);
    return decoder.decode(bytes);
}

// UTF-16 written without a mark still starts with "<?" when it declares itself.
std::optional<QString> unmarkedUtf16(const QByteArray& bytes) {
    const auto decode = [&bytes](QStringConverter::Encoding encoding) {
        QStringDecoder decoder(encoding);
        return QString(decoder.decode(bytes));
    };
    if (bytes.startsWith(QByteArrayView("<\0?\0", 4)))
        return decode(QStringConverter::Utf16LE);
    if (bytes.startsWith(QByteArrayView("\0<\0?", 4)))
        return decode(QStringConverter::Utf16BE);
    return std::nullopt;
}

QString declaredEncoding(const QByteArray& bytes) {
    static const QRegularExpression declaration(
        QStringLiteral(R"(^\s*<\?xml\s[^>]*?encoding\s*=\s*["']([A-Za-z0-9._:-]+)["'])"));
    const QString head = QString::fromLatin1(bytes.left(512));
    return declaration.match(head).captured(1);
}

bool isUtf8(const QString& name) {
    return name.compare(QLatin1String("utf-8"), Qt::CaseInsensitive) == 0 ||
           name.compare(QLatin1String("utf8"), Qt::CaseInsensitive) == 0;
}
} // namespace

QString TextDecoder::decode(const QByteArray& bytes, const QString& charset) {
    if (leavesByteOrderOpen(charset))
        return utf16InEitherOrder(bytes);
    if (!charset.trimmed().isEmpty())
        if (std::optional<QString> text = inCharset(bytes, charset))
            return *text;
    if (std::optional<QString> text = byMark(bytes))
        return *text;
    QStringDecoder utf8(QStringDecoder::Utf8);
    const QString text = utf8.decode(bytes);
    return utf8.hasError() ? fromWindows1252(bytes) : text;
}

QByteArray TextDecoder::xmlAsUtf8(const QByteArray& bytes, QString* why) {
    if (std::optional<QString> text = byMark(bytes))
        return text->toUtf8();
    if (std::optional<QString> text = unmarkedUtf16(bytes))
        return text->toUtf8();
    const QString encoding = declaredEncoding(bytes);
    if (encoding.isEmpty() || isUtf8(encoding))
        return bytes;
    if (std::optional<QString> text = inCharset(bytes, encoding))
        return text->toUtf8();
    if (why)
        *why = QStringLiteral("the encoding \"%1\" is not known").arg(encoding);
    return QByteArray();
}

QString TextDecoder::charsetOf(const QString& mimeType) {
    static const QRegularExpression parameter(QStringLiteral(R"(;\s*charset\s*=\s*"?([^";\s]+))"),
                                              QRegularExpression::CaseInsensitiveOption);
    return parameter.match(mimeType).captured(1);
}
