#include "WspReader.h"

#include "AppGlobals.h"
#include "TextDecoder.h"
#include "WspNames.h"

#include <algorithm>

namespace {
constexpr quint8 kShortLengthMax = 30;
constexpr quint8 kLengthQuote = 31;
constexpr quint8 kTextQuote = 0x7F;
constexpr quint8 kStringQuote = 0x22;
constexpr int kUintvarBytes = 5;
constexpr quint32 kLongIntegerBytes = 8;

// Typed parameters of a content type by their well-known numbers; those of
// encoding version 1.4 (0x17 ...) replace the older ones but mean the same.
QString parameterName(quint64 code) {
    switch (code) {
    case 0x00:
        return QStringLiteral("q");
    case 0x01:
        return QStringLiteral("charset");
    case 0x03:
    case 0x09:
        return QStringLiteral("type");
    case 0x05:
    case 0x17:
        return QStringLiteral("name");
    case 0x0A:
    case 0x19:
        return QStringLiteral("start");
    default:
        return QString();
    }
}
} // namespace

WspReader::WspReader(const QByteArray& bytes, qsizetype begin, qsizetype end)
    : m_bytes(&bytes), m_at(begin), m_end(std::min(end, bytes.size())) {}

quint8 WspReader::peek() const {
    return atEnd() ? 0 : quint8(m_bytes->at(m_at));
}

bool WspReader::byte(quint8& value) {
    if (atEnd())
        return endsEarly();
    value = quint8(m_bytes->at(m_at++));
    return true;
}

bool WspReader::skip(qsizetype count) {
    if (count > m_end - m_at)
        return endsEarly();
    m_at += count;
    return true;
}

bool WspReader::take(qsizetype count, WspReader* part) {
    const qsizetype begin = m_at;
    if (!skip(count))
        return false;
    *part = WspReader(*m_bytes, begin, m_at);
    return true;
}

QByteArray WspReader::rest() {
    const QByteArray bytes = m_bytes->mid(m_at, m_end - m_at);
    m_at = m_end;
    return bytes;
}

bool WspReader::uintvar(quint32& value) {
    quint64 total = 0;
    for (int i = 0; i < kUintvarBytes; ++i) {
        quint8 next = 0;
        if (!byte(next))
            return false;
        total = (total << 7) | (next & 0x7F);
        if (!(next & 0x80)) {
            if (total > 0xFFFFFFFFu)
                return badValue();
            value = quint32(total);
            return true;
        }
    }
    return badValue();
}

bool WspReader::valueLength(quint32& length) {
    quint8 first = 0;
    if (!byte(first))
        return false;
    if (first > kLengthQuote)
        return badValue();
    length = first;
    if (first == kLengthQuote && !uintvar(length))
        return false;
    if (length > m_end - m_at)
        return endsEarly();
    return true;
}

bool WspReader::withLength(WspReader* value) {
    quint32 length = 0;
    return valueLength(length) && take(length, value);
}

bool WspReader::integer(quint64& value) {
    const quint8 first = peek();
    if (first >= 0x80) {
        ++m_at;
        value = first & 0x7F;
        return true;
    }
    quint8 length = 0;
    if (!byte(length))
        return false;
    if (length == 0 || length > kLongIntegerBytes)
        return badValue();
    if (length > m_end - m_at)
        return endsEarly();
    value = 0;
    for (quint8 i = 0; i < length; ++i)
        value = (value << 8) | quint8(m_bytes->at(m_at++));
    return true;
}

bool WspReader::textString(QByteArray& text) {
    if (peek() == kTextQuote || peek() == kStringQuote)
        ++m_at;
    const qsizetype end = m_bytes->indexOf('\0', m_at);
    if (end < 0 || end >= m_end)
        return endsEarly();
    text = m_bytes->mid(m_at, end - m_at);
    m_at = end + 1;
    return true;
}

// The charset form keeps its text to the end of its length: a UTF-16 text
// holds zero bytes of its own before the terminating one.
bool WspReader::encodedString(QString& text) {
    // A lone end byte is an empty text, not a value of length 0: the charset
    // form always holds its charset.
    if (peek() > kLengthQuote || peek() == 0) {
        QByteArray bytes;
        if (!textString(bytes))
            return false;
        text = TextDecoder::decode(bytes);
        return true;
    }
    WspReader value(*m_bytes);
    quint64 mibEnum = 0;
    if (!withLength(&value) || !value.integer(mibEnum))
        return adopt(value);
    if (value.peek() == kTextQuote)
        value.skip(1);
    QByteArray bytes = value.rest();
    if (bytes.endsWith('\0'))
        bytes.chop(1);
    text = TextDecoder::decode(bytes, WspNames::charset(mibEnum));
    while (text.endsWith(QChar(0)))
        text.chop(1);
    return true;
}

bool WspReader::contentType(ContentType& type) {
    type = ContentType();
    const quint8 first = peek();
    if (first >= 0x80) {
        ++m_at;
        type.mediaType = WspNames::mediaType(first & 0x7F);
        return true;
    }
    if (first > kLengthQuote) {
        QByteArray text;
        if (!textString(text))
            return false;
        type.mediaType = QString::fromLatin1(text).trimmed().toLower();
        return true;
    }
    WspReader general(*m_bytes);
    Value media;
    if (!withLength(&general) || !general.value(media))
        return adopt(general);
    type.mediaType = media.isInteger ? WspNames::mediaType(media.integer)
                                     : QString::fromLatin1(media.text).trimmed().toLower();
    while (!general.atEnd())
        if (!general.parameter(type))
            return adopt(general);
    return true;
}

// A typed parameter is a well-known number and its value, an untyped one a
// name and its value; a parameter this program has no use for is stepped over.
bool WspReader::parameter(ContentType& type) {
    const quint8 first = peek();
    if (first > kLengthQuote && first < 0x80) {
        QByteArray name;
        return textString(name) && parameterValue(QString::fromLatin1(name).toLower(), type);
    }
    quint64 code = 0;
    if (!integer(code))
        return false;
    if (code == 0) {
        quint32 quality = 0; // the q-value, a uintvar of its own
        return uintvar(quality);
    }
    return parameterValue(parameterName(code), type);
}

bool WspReader::parameterValue(const QString& name, ContentType& type) {
    Value read;
    if (!value(read))
        return false;
    const QString text = TextDecoder::decode(read.text).trimmed();
    if (name == QLatin1String("charset"))
        type.charset = read.isInteger ? WspNames::charset(read.integer) : text.toLower();
    else if (name == QLatin1String("type"))
        type.type = read.isInteger ? WspNames::mediaType(read.integer) : text.toLower();
    else if (name == QLatin1String("start") && !read.isInteger)
        type.start = text;
    else if (name == QLatin1String("name") && !read.isInteger)
        type.name = text;
    return true;
}

// A short integer, a long integer (a length of up to eight), a string, or
// any other value with a length, whose bytes are stepped over.
bool WspReader::value(Value& value) {
    value = Value();
    const quint8 first = peek();
    if (first > kLengthQuote && first < 0x80)
        return textString(value.text);
    if (first >= 0x80 || (first > 0 && first <= kLongIntegerBytes)) {
        value.isInteger = true;
        return integer(value.integer);
    }
    quint32 length = 0;
    return valueLength(length) && skip(length);
}

bool WspReader::skipValue() {
    const quint8 first = peek();
    if (atEnd())
        return endsEarly();
    if (first >= 0x80)
        return skip(1);
    if (first > kLengthQuote) {
        QByteArray text;
        return textString(text);
    }
    quint32 length = 0;
    return valueLength(length) && skip(length);
}

// Past the end of the file the file is cut short; past the end of a value
// inside it, the value is wrong.
bool WspReader::endsEarly() {
    if (m_end < m_bytes->size())
        return badValue();
    m_error = AppGlobals::text("STR_MMS_ENDS_EARLY", "the file ends early, at byte %0",
                               {QString::number(m_at)});
    return false;
}

bool WspReader::badValue() {
    m_error = AppGlobals::text("STR_MMS_BAD_VALUE", "an unreadable value at byte %0",
                               {QString::number(m_at)});
    return false;
}

// A part's reader failed: its reason is this one's.
bool WspReader::adopt(const WspReader& part) {
    if (m_error.isEmpty())
        m_error = part.m_error;
    return false;
}
