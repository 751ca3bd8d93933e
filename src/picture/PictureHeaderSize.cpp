#include "PictureHeaderSize.h"

#include <QtEndian>
#include <climits>

namespace {
// A declared edge as a size's edge; those beyond what a size holds are
// clamped, which the picture limits refuse all the same.
int edge(quint64 value) {
    return int(std::min<quint64>(value, INT_MAX));
}

std::optional<QByteArray> readExactly(QIODevice& file, qint64 bytes) {
    const QByteArray data = file.read(bytes);
    return data.size() == bytes ? std::optional<QByteArray>(data) : std::nullopt;
}

const uchar* bytesOf(const QByteArray& data) {
    return reinterpret_cast<const uchar*>(data.constData());
}
} // namespace

std::optional<QSize> PictureHeaderSize::read(QIODevice& file, Format format) {
    if (!file.seek(0))
        return std::nullopt;
    switch (format) {
    case SiliconGraphics:
        return siliconGraphics(file);
    case DirectDraw:
        return directDraw(file);
    case Jpeg2000Stream:
    case Jpeg2000File:
        break;
    }
    const auto stream = codeStream(file, format);
    return stream ? codeStreamSize(file, stream->start) : std::nullopt;
}

std::optional<PictureHeaderSize::Extent> PictureHeaderSize::codeStream(QIODevice& file,
                                                                       Format format) {
    if (format == Jpeg2000Stream)
        return Extent{0, file.size()};
    return format == Jpeg2000File ? boxedCodeStream(file) : std::nullopt;
}

bool PictureHeaderSize::codeStreamComplete(QIODevice& file, Format format) {
    const auto stream = codeStream(file, format);
    if (!stream || stream->end - stream->start < 2 || !file.seek(stream->end - 2))
        return false;
    return file.read(2) == QByteArray("\xFF\xD9", 2);
}

// A magic number, storage, bytes a channel, dimensions, then the width and
// height, all big-endian.
std::optional<QSize> PictureHeaderSize::siliconGraphics(QIODevice& file) {
    const auto header = readExactly(file, 10);
    if (!header || qFromBigEndian<quint16>(bytesOf(*header)) != 474)
        return std::nullopt;
    return QSize(qFromBigEndian<quint16>(bytesOf(*header) + 6),
                 qFromBigEndian<quint16>(bytesOf(*header) + 8));
}

// "DDS ", the header's length, its flags, then height and width, little-endian.
std::optional<QSize> PictureHeaderSize::directDraw(QIODevice& file) {
    const auto header = readExactly(file, 20);
    if (!header || !header->startsWith("DDS "))
        return std::nullopt;
    return QSize(edge(qFromLittleEndian<quint32>(bytesOf(*header) + 16)),
                 edge(qFromLittleEndian<quint32>(bytesOf(*header) + 12)));
}

// The start of stream marker, then the size marker: its length, the
// capabilities, the grid's far corner and its offset from the origin; the
// picture is what lies between them.
std::optional<QSize> PictureHeaderSize::codeStreamSize(QIODevice& file, qint64 start) {
    if (!file.seek(start))
        return std::nullopt;
    const auto header = readExactly(file, 24);
    if (!header || !header->startsWith("\xFF\x4F\xFF\x51"))
        return std::nullopt;
    const uchar* bytes = bytesOf(*header);
    const quint32 right = qFromBigEndian<quint32>(bytes + 8);
    const quint32 bottom = qFromBigEndian<quint32>(bytes + 12);
    const quint32 left = qFromBigEndian<quint32>(bytes + 16);
    const quint32 top = qFromBigEndian<quint32>(bytes + 20);
    if (left >= right || top >= bottom)
        return std::nullopt;
    return QSize(edge(right - left), edge(bottom - top));
}

// Boxes of a length and a type, one after the other; the code stream box
// holds what the decoder reads, whatever the header box claims.
std::optional<PictureHeaderSize::Extent> PictureHeaderSize::boxedCodeStream(QIODevice& file) {
    for (qint64 at = 0;;) {
        if (!file.seek(at))
            return std::nullopt;
        const auto box = readExactly(file, 8);
        if (!box)
            return std::nullopt;
        quint64 length = qFromBigEndian<quint32>(bytesOf(*box));
        qint64 contents = at + 8;
        if (length == 1) {
            const auto large = readExactly(file, 8);
            if (!large)
                return std::nullopt;
            length = qFromBigEndian<quint64>(bytesOf(*large));
            contents += 8;
        }
        // A length of 0 runs to the end of the file.
        const qint64 end =
            length == 0 ? file.size() : at + qint64(std::min<quint64>(length, LLONG_MAX / 2));
        if (box->mid(4) == "jp2c")
            return Extent{contents, end};
        if (end <= contents || end > file.size())
            return std::nullopt;
        at = end;
    }
}
