#include "MmsPartReader.h"

namespace {
constexpr quint8 kContentType = 0x84;
constexpr quint8 kContentLocation = 0x8E;
constexpr quint8 kLengthQuote = 31;
constexpr quint8 kTextQuote = 0x7F;
} // namespace

bool MmsPartReader::read(const QByteArray& bytes) {
    m_bytes = bytes;
    m_at = 0;
    m_parts.clear();
    m_error.clear();
    for (quint8 field = 0; field != kContentType;) {
        if (m_at >= m_bytes.size() || quint8(m_bytes[m_at]) < 0x80)
            return fail(QStringLiteral("no content type among the message headers"));
        field = quint8(m_bytes[m_at++]);
        if (!skipValue())
            return false;
    }
    quint32 count = 0;
    if (!uintvar(count))
        return false;
    for (quint32 i = 0; i < count; ++i)
        if (!readPart())
            return false;
    return true;
}

// Any value: a short integer, a length and that many bytes, or a string.
bool MmsPartReader::skipValue() {
    if (m_at >= m_bytes.size())
        return fail(QStringLiteral("a header without its value"));
    const quint8 first = quint8(m_bytes[m_at]);
    if (first >= 0x80) {
        ++m_at;
        return true;
    }
    if (first > kLengthQuote) {
        textString();
        return true;
    }
    quint32 length = first;
    ++m_at;
    if (first == kLengthQuote && !uintvar(length))
        return false;
    if (length > m_bytes.size() - m_at)
        return fail(QStringLiteral("a value longer than the message"));
    m_at += length;
    return true;
}

bool MmsPartReader::uintvar(quint32& value) {
    value = 0;
    for (int i = 0; i < 5; ++i) {
        if (m_at >= m_bytes.size())
            return fail(QStringLiteral("the message ends inside a number"));
        const quint8 byte = quint8(m_bytes[m_at++]);
        value = (value << 7) | (byte & 0x7F);
        if (!(byte & 0x80))
            return true;
    }
    return fail(QStringLiteral("a number longer than five bytes"));
}

QByteArray MmsPartReader::textString() {
    if (m_at < m_bytes.size() && quint8(m_bytes[m_at]) == kTextQuote)
        ++m_at;
    const qsizetype end = m_bytes.indexOf('\0', m_at);
    const qsizetype stop = end < 0 ? m_bytes.size() : end;
    const QByteArray text = m_bytes.mid(m_at, stop - m_at);
    m_at = stop + 1;
    return text;
}

// Header length, data length, the content type and headers, then the data.
bool MmsPartReader::readPart() {
    quint32 headerLength = 0;
    quint32 dataLength = 0;
    if (!uintvar(headerLength) || !uintvar(dataLength))
        return false;
    const qsizetype headersEnd = m_at + headerLength;
    if (headerLength > m_bytes.size() - m_at || dataLength > m_bytes.size() - headersEnd)
        return fail(QStringLiteral("a part longer than the message"));
    Part part;
    bool fine = skipValue();
    while (fine && m_at < headersEnd) {
        // A well-known header is one byte; any other is named by a string.
        const quint8 field = quint8(m_bytes[m_at]);
        if (field >= 0x80)
            ++m_at;
        else
            textString();
        if (field == kContentLocation)
            part.name = QString::fromUtf8(textString());
        else
            fine = skipValue();
    }
    if (!fine)
        return false;
    part.data = m_bytes.mid(headersEnd, dataLength);
    m_parts.append(part);
    m_at = headersEnd + dataLength;
    return true;
}

bool MmsPartReader::fail(const QString& why) {
    m_error = why + QStringLiteral(" at byte %1").arg(m_at);
    return false;
}
