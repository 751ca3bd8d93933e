#include "PictureLength.h"

#include <QtEndian>
#include <algorithm>

namespace {
// The largest values the formats allow; beyond them the header is not one
// of their headers, and the sums below cannot overflow.
constexpr quint64 MostChannels = 56;
constexpr quint64 MostEdge = 300'000;
constexpr quint64 MostDepth = 32;

quint64 bigEndian(const char* bytes, int count) {
    quint64 value = 0;
    for (int i = 0; i < count; ++i)
        value = (value << 8) | quint8(bytes[i]);
    return value;
}

std::optional<quint64> readBigEndian(QIODevice& file, int bytes) {
    const QByteArray data = file.read(bytes);
    if (data.size() != bytes)
        return std::nullopt;
    return bigEndian(data.constData(), bytes);
}

// The bytes of a file one at a time, read a block at a time.
class ByteStream {
public:
    explicit ByteStream(QIODevice& file) : m_file(file) {}
    bool next(quint8& byte) {
        if (m_at == m_block.size()) {
            m_block = m_file.read(BlockBytes);
            m_at = 0;
            if (m_block.isEmpty())
                return false;
        }
        byte = quint8(m_block[m_at++]);
        return true;
    }
    bool skip(qint64 count) {
        quint8 byte = 0;
        for (qint64 i = 0; i < count; ++i)
            if (!next(byte))
                return false;
        return true;
    }
    qint64 position() const { return m_file.pos() - (m_block.size() - m_at); }

private:
    static constexpr qint64 BlockBytes = 65536;
    QIODevice& m_file;
    QByteArray m_block;
    qsizetype m_at = 0;
};
} // namespace

std::optional<qint64> PictureLength::required(QIODevice& file, Format format) {
    if (!file.seek(0))
        return std::nullopt;
    switch (format) {
    case Layered:
        return layered(file);
    case Targa:
        return targa(file);
    case Pcx:
        return pcx(file);
    }
    return std::nullopt;
}

std::optional<qint64> PictureLength::layered(QIODevice& file) {
    constexpr qint64 HeaderBytes = 26;
    const QByteArray header = file.read(HeaderBytes);
    if (!header.startsWith("8BPS"))
        return std::nullopt;
    const quint64 version = bigEndian(header.constData() + 4, 2);
    if (version != 1 && version != 2)
        return std::nullopt;
    if (header.size() < HeaderBytes)
        return HeaderBytes;
    const quint64 channels = bigEndian(header.constData() + 12, 2);
    const quint64 height = bigEndian(header.constData() + 14, 4);
    const quint64 width = bigEndian(header.constData() + 18, 4);
    const quint64 depth = bigEndian(header.constData() + 22, 2);
    if (channels > MostChannels || height > MostEdge || width > MostEdge || depth > MostDepth)
        return std::nullopt;
    // The large-document variant stores the layer section's length and the
    // row lengths in twice as many bytes.
    const bool large = version == 2;
    qint64 position = HeaderBytes;
    // Colour mode data, image resources, then layers and masks.
    for (int lengthBytes : {4, 4, large ? 8 : 4}) {
        file.seek(position);
        const auto length = readBigEndian(file, lengthBytes);
        if (!length || *length > quint64(file.size()))
            return file.size() + 1;
        position += lengthBytes + qint64(*length);
    }
    file.seek(position);
    const auto compression = readBigEndian(file, 2);
    position += 2;
    if (!compression)
        return position;
    const qint64 rows = qint64(channels * height);
    if (*compression == 0)
        return position + rows * qint64((width * depth + 7) / 8);
    if (*compression == 1)
        return layeredRunsEnd(file, rows, large ? 4 : 2);
    return position;
}

// The file is positioned at the table of row lengths.
qint64 PictureLength::layeredRunsEnd(QIODevice& file, qint64 rows, int countBytes) {
    const qint64 tableEnd = file.pos() + rows * countBytes;
    if (tableEnd > file.size())
        return tableEnd;
    qint64 end = tableEnd;
    // Read in blocks: a tall picture has hundreds of thousands of rows.
    constexpr qint64 BlockRows = 65536;
    for (qint64 done = 0; done < rows; done += BlockRows) {
        const QByteArray block = file.read(std::min(BlockRows, rows - done) * countBytes);
        for (qsizetype i = 0; i + countBytes <= block.size(); i += countBytes)
            end += qint64(bigEndian(block.constData() + i, countBytes));
    }
    return end;
}

std::optional<qint64> PictureLength::targa(QIODevice& file) {
    constexpr qint64 HeaderBytes = 18;
    const QByteArray header = file.read(HeaderBytes);
    if (header.size() < HeaderBytes)
        return HeaderBytes;
    const auto* bytes = reinterpret_cast<const uchar*>(header.constData());
    const int type = bytes[2];
    const int pixelBytes = (bytes[16] + 7) / 8;
    // Colour-mapped, true-colour and grey pictures, plain (1 to 3) or run-length coded (9 to 11).
    if ((type < 1 || type > 3) && (type < 9 || type > 11))
        return std::nullopt;
    if (pixelBytes < 1 || pixelBytes > 4)
        return std::nullopt;
    const qint64 mapBytes =
        bytes[1] ? qint64(qFromLittleEndian<quint16>(bytes + 5)) * ((bytes[7] + 7) / 8) : 0;
    const qint64 start = HeaderBytes + bytes[0] + mapBytes;
    const qint64 pixels =
        qint64(qFromLittleEndian<quint16>(bytes + 12)) * qFromLittleEndian<quint16>(bytes + 14);
    if (type < 9)
        return start + pixels * pixelBytes;
    // Runs: a count byte, then one pixel repeated or that many pixels as they are.
    if (!file.seek(start))
        return file.size() + 1;
    ByteStream stream(file);
    for (qint64 done = 0; done < pixels;) {
        quint8 packet = 0;
        if (!stream.next(packet))
            return file.size() + 1;
        const int count = (packet & 0x7F) + 1;
        if (!stream.skip(qint64(packet & 0x80 ? 1 : count) * pixelBytes))
            return file.size() + 1;
        done += count;
    }
    return stream.position();
}

std::optional<qint64> PictureLength::pcx(QIODevice& file) {
    constexpr qint64 HeaderBytes = 128;
    const QByteArray header = file.read(HeaderBytes);
    if (header.isEmpty() || header[0] != 10)
        return std::nullopt;
    if (header.size() < HeaderBytes)
        return HeaderBytes;
    const auto* bytes = reinterpret_cast<const uchar*>(header.constData());
    const int top = qFromLittleEndian<quint16>(bytes + 6);
    const int bottom = qFromLittleEndian<quint16>(bytes + 10);
    if (bottom < top)
        return std::nullopt;
    const qint64 decoded =
        qint64(bytes[65]) * qFromLittleEndian<quint16>(bytes + 66) * (bottom - top + 1);
    qint64 end = HeaderBytes + decoded;
    if (bytes[2] == 1) {
        // Runs: a byte with the two top bits set counts how often the next one repeats.
        ByteStream stream(file);
        for (qint64 done = 0; done < decoded;) {
            quint8 byte = 0;
            if (!stream.next(byte))
                return file.size() + 1;
            const bool run = (byte & 0xC0) == 0xC0;
            if (run && !stream.skip(1))
                return file.size() + 1;
            done += run ? byte & 0x3F : 1;
        }
        end = stream.position();
    }
    // A 256-colour picture keeps its palette after the pixels (a marker
    // byte and 768 bytes); one whose file ends inside the palette is cut off.
    constexpr qint64 PaletteBytes = 769;
    const bool palette = bytes[3] == 8 && bytes[65] == 1 && file.size() > end;
    return palette ? end + PaletteBytes : end;
}
