#include "PsdLength.h"

#include <algorithm>

namespace {
constexpr qint64 HeaderBytes = 26;
constexpr int RawData = 0;
constexpr int RunLengthData = 1;
// The largest values the format allows; beyond them the header is not one
// of its headers, and the sums below could not overflow anyway.
constexpr quint64 MostChannels = 56;
constexpr quint64 MostEdge = 300'000;
constexpr quint64 MostDepth = 32;

quint64 valueOf(const char* bytes, int count) {
    quint64 value = 0;
    for (int i = 0; i < count; ++i)
        value = (value << 8) | quint8(bytes[i]);
    return value;
}
} // namespace

std::optional<qint64> PsdLength::required(QIODevice& file) {
    if (!file.seek(0) || file.read(4) != "8BPS")
        return std::nullopt;
    const auto version = bigEndian(file, 2);
    if (!version || (*version != 1 && *version != 2))
        return std::nullopt;
    // The large-document variant stores the layer section's length and the
    // row lengths in twice as many bytes.
    const bool large = *version == 2;
    file.seek(12);
    const auto channels = bigEndian(file, 2);
    const auto height = bigEndian(file, 4);
    const auto width = bigEndian(file, 4);
    const auto depth = bigEndian(file, 2);
    if (!channels || !height || !width || !depth)
        return HeaderBytes;
    if (*channels > MostChannels || *height > MostEdge || *width > MostEdge || *depth > MostDepth)
        return std::nullopt;
    qint64 position = HeaderBytes;
    // Colour mode data, image resources, then layers and masks.
    for (int lengthBytes : {4, 4, large ? 8 : 4}) {
        file.seek(position);
        const auto length = bigEndian(file, lengthBytes);
        if (!length || *length > quint64(file.size()))
            return file.size() + 1;
        position += lengthBytes + qint64(*length);
    }
    file.seek(position);
    const auto compression = bigEndian(file, 2);
    position += 2;
    if (!compression)
        return position;
    const qint64 rows = qint64(*channels * *height);
    if (*compression == RawData)
        return position + rows * qint64((*width * *depth + 7) / 8);
    if (*compression == RunLengthData)
        return runLengthEnd(file, rows, large ? 4 : 2);
    return position;
}

std::optional<quint64> PsdLength::bigEndian(QIODevice& file, int bytes) {
    const QByteArray data = file.read(bytes);
    if (data.size() != bytes)
        return std::nullopt;
    return valueOf(data.constData(), bytes);
}

// The file is positioned at the table of row lengths.
qint64 PsdLength::runLengthEnd(QIODevice& file, qint64 rows, int countBytes) {
    const qint64 tableEnd = file.pos() + rows * countBytes;
    if (tableEnd > file.size())
        return tableEnd;
    qint64 end = tableEnd;
    // Read in blocks: a tall picture has hundreds of thousands of rows.
    constexpr qint64 BlockRows = 65536;
    for (qint64 done = 0; done < rows; done += BlockRows) {
        const QByteArray block = file.read(std::min(BlockRows, rows - done) * countBytes);
        for (qsizetype i = 0; i + countBytes <= block.size(); i += countBytes)
            end += qint64(valueOf(block.constData() + i, countBytes));
    }
    return end;
}
