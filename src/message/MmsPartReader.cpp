#include "MmsPartReader.h"

#include "AppGlobals.h"
#include "TextDecoder.h"
#include "WspNames.h"

namespace {
// Message header fields (sent with the high bit set).
constexpr quint8 kContentType = 0x84;
constexpr quint8 kFrom = 0x89;
constexpr quint8 kMessageType = 0x8C;
constexpr quint8 kSubject = 0x96;
// Part header fields, without the high bit.
constexpr quint8 kContentLocation = 0x0E;
constexpr quint8 kContentId = 0x40;
constexpr quint8 kAddressPresent = 0x80;
constexpr quint8 kShiftDelimiter = 0x7F;
constexpr quint8 kLastShortCutShift = 0x1F;
// A message nests a multipart in a part now and then; deeper than this it is
// no message but an attempt to exhaust the reader.
constexpr int kMaxDepth = 8;
} // namespace

QString MmsPartReader::bareContentId(QString id) {
    id = id.trimmed();
    if (id.startsWith(u'<') && id.endsWith(u'>'))
        id = id.mid(1, id.size() - 2);
    return id;
}

bool MmsPartReader::looksLikeMessage(const QByteArray& bytes) {
    return bytes.size() >= 2 && quint8(bytes[0]) == kMessageType &&
           (quint8(bytes[1]) == SendRequest || quint8(bytes[1]) == RetrieveConfirmation);
}

bool MmsPartReader::read(const QByteArray& bytes) {
    *this = MmsPartReader();
    m_bytes = bytes;
    WspReader in(m_bytes);
    if (!readHeaders(in))
        return false;
    if (WspNames::isMultipart(m_contentType.mediaType))
        return readMultipart(in, 0);
    m_parts.append({QString(), QString(), m_contentType, in.rest()});
    return true;
}

// Content-Type is the last header: the body follows it.
bool MmsPartReader::readHeaders(WspReader& in) {
    for (;;) {
        if (in.atEnd())
            return fail(AppGlobals::text("STR_MMS_NO_CONTENT_TYPE",
                                         "the message headers end without a content type"));
        quint8 field = 0;
        if (in.peek() < 0x80) {
            // An application header: a name and a text.
            QByteArray name;
            if (!in.textString(name) || !in.skipValue())
                return fail(in.error());
            continue;
        }
        in.byte(field);
        if (field == kContentType)
            return in.contentType(m_contentType) || fail(in.error());
        if (!readHeader(in, field))
            return fail(in.error());
    }
}

bool MmsPartReader::readHeader(WspReader& in, quint8 field) {
    switch (field) {
    case kMessageType: {
        quint8 type = 0;
        if (in.peek() < 0x80)
            return in.skipValue();
        in.byte(type);
        m_messageType = type;
        return true;
    }
    case kSubject:
        return in.encodedString(m_subject);
    case kFrom:
        return readFrom(in);
    default:
        return in.skipValue();
    }
}

// A length, then an address or the token that leaves it to the relay.
bool MmsPartReader::readFrom(WspReader& in) {
    if (in.peek() > kLastShortCutShift)
        return in.skipValue();
    WspReader value(m_bytes);
    if (!in.withLength(&value))
        return false;
    quint8 token = 0;
    if (value.byte(token) && token == kAddressPresent && !value.encodedString(m_from))
        m_from.clear();
    return true;
}

bool MmsPartReader::readMultipart(WspReader& in, int depth) {
    quint32 count = 0;
    if (!in.uintvar(count))
        return fail(in.error());
    // Each entry takes at least two bytes, so a false count ends with the bytes.
    for (quint32 i = 0; i < count; ++i)
        if (!readEntry(in, depth))
            return false;
    return true;
}

// Header length, data length, the content type and headers, then the data.
// Headers that cannot be read cost the part, not the message: the lengths
// still say where the next part begins.
bool MmsPartReader::readEntry(WspReader& in, int depth) {
    const QString number = QString::number(++m_entries);
    quint32 headersLength = 0;
    quint32 dataLength = 0;
    if (!in.uintvar(headersLength) || !in.uintvar(dataLength))
        return fail(in.error());
    WspReader headers(m_bytes);
    WspReader data(m_bytes);
    if (!in.take(headersLength, &headers) || !in.take(dataLength, &data))
        return fail(AppGlobals::text("STR_MMS_PART_TOO_LONG",
                                     "part %0 claims more bytes than the file holds", {number}));
    Part part;
    if (!readPartHeaders(headers, part)) {
        m_problems << AppGlobals::text(
            "STR_MMS_PART_HEADERS", "The headers of part %0 cannot be read (%1); it is left out.",
            {number, headers.error()});
        return true;
    }
    if (WspNames::isMultipart(part.type.mediaType))
        return readNested(part, data, depth);
    part.data = data.rest();
    m_parts.append(part);
    return true;
}

// The parts inside take the place of their container; what they hold up to a
// fault is kept, and the fault said, as the outer parts go on.
bool MmsPartReader::readNested(const Part& container, WspReader& data, int depth) {
    const QString name = container.name.isEmpty() ? QString::number(m_entries) : container.name;
    if (depth + 1 >= kMaxDepth) {
        m_problems << AppGlobals::text(
            "STR_MMS_TOO_DEEP", "Part %0 nests parts deeper than %1 levels; they are left out.",
            {name, QString::number(kMaxDepth)});
        return true;
    }
    if (!readMultipart(data, depth + 1)) {
        m_problems << AppGlobals::text("STR_MMS_NESTED_DAMAGED",
                                       "The parts inside part %0 cannot all be read (%1).",
                                       {name, m_error});
        m_error.clear();
    }
    return true;
}

bool MmsPartReader::readPartHeaders(WspReader& in, Part& part) {
    if (!in.contentType(part.type))
        return false;
    while (!in.atEnd()) {
        const quint8 first = in.peek();
        quint8 code = 0;
        QByteArray name;
        if (first >= 0x80) {
            in.byte(code);
            const quint8 field = code & 0x7F;
            const QString known = field == kContentLocation ? QStringLiteral("content-location")
                                  : field == kContentId     ? QStringLiteral("content-id")
                                                            : QString();
            if (!readPartHeader(in, known, part))
                return false;
        } else if (first == kShiftDelimiter) {
            // A shift to another header code page and the page's number.
            if (!in.skip(2))
                return false;
        } else if (first > kLastShortCutShift) {
            if (!in.textString(name) ||
                !readPartHeader(in, QString::fromLatin1(name).toLower(), part))
                return false;
        } else if (!in.skip(1)) {
            // A short-cut shift to another code page: one byte.
            return false;
        }
    }
    return true;
}

bool MmsPartReader::readPartHeader(WspReader& in, const QString& field, Part& part) {
    if (field != QLatin1String("content-location") && field != QLatin1String("content-id"))
        return in.skipValue();
    QByteArray text;
    if (!in.textString(text))
        return false;
    if (field == QLatin1String("content-location"))
        part.name = TextDecoder::decode(text).trimmed();
    else
        part.contentId = bareContentId(TextDecoder::decode(text));
    return true;
}

bool MmsPartReader::fail(const QString& why) {
    m_error = why;
    return false;
}
