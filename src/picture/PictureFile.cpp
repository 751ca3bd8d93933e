#include "PictureFile.h"

#include "AppError.h"
#include "AppGlobals.h"
#include "PictureLimits.h"

#include <QImageReader>

namespace {
// The edge of the thumbnail a picture is tried with before it is taken in.
constexpr int ProbeEdge = 64;
// Qt's JPEG reader decodes straight into a thumbnail (libjpeg scales down
// by up to eight while decoding); every other reader decodes all pixels
// and scales afterwards, so those are only tried up to this size and
// larger ones are judged by their header alone.
constexpr qint64 ProbeDecodesWholeUpTo = 16'000'000;

// Qt refuses to decode more than 128 MB by default, which a 36 megapixel
// photo already needs. The program's own limit is the guard: Qt's is set
// to the deepest decode (16-bit RGBA, 8 bytes a pixel) of the largest
// picture the program takes.
void allowTheLargestPicture() {
    static const bool allowed = [] {
        const qint64 megabyte = 1 << 20;
        const qint64 bytes = PictureLimits::MaxPixels * 8;
        QImageReader::setAllocationLimit(int((bytes + megabyte - 1) / megabyte));
        return true;
    }();
    Q_UNUSED(allowed);
}

[[noreturn]] void refuse(const QImageReader& reader, const QString& path) {
    const bool noFile = reader.error() == QImageReader::FileNotFoundError ||
                        reader.error() == QImageReader::DeviceError;
    QString text =
        noFile ? AppGlobals::text("ERR_PICTURE_UNREADABLE", "Cannot read the picture %0: %1")
               : AppGlobals::text("ERR_PICTURE_UNDECODABLE",
                                  "The picture %0 cannot be decoded: the file is "
                                  "damaged or not a picture the program reads.");
    text.replace("%0", path);
    text.replace("%1", reader.errorString());
    throw AppError(PictureFile::ErrorSource, text);
}

// The picture's size from its header, refused when the header does not read
// or the size is out of bounds; invalid for formats that tell no size.
QSize readHeader(QImageReader& reader, const QString& path) {
    allowTheLargestPicture();
    if (!reader.canRead())
        refuse(reader, path);
    const QSize size = reader.size();
    if (size.isValid())
        PictureLimits::check(size, PictureFile::ErrorSource);
    else if (reader.supportsOption(QImageIOHandler::Size))
        refuse(reader, path);
    return size;
}

// The whole picture for an invalid size, else the picture scaled to it.
QImage decode(QImageReader& reader, const QString& path, QSize size) {
    if (size.isValid())
        reader.setScaledSize(size);
    QImage picture;
    if (!reader.read(&picture))
        refuse(reader, path);
    PictureLimits::check(picture.size(), PictureFile::ErrorSource);
    return picture;
}
} // namespace

QImage PictureFile::load(const QString& path, QSize drawnSize) {
    QImageReader reader(path);
    const QSize source = readHeader(reader, path);
    if (!drawnSize.isValid())
        return decode(reader, path, QSize());
    // Even a picture drawn into no pixels costs one, never the whole picture.
    const QSize size = drawnSize.expandedTo(QSize(1, 1));
    const QSize wanted = source.isValid() ? size.boundedTo(source) : size;
    return decode(reader, path, wanted == source ? QSize() : wanted);
}

void PictureFile::probe(const QString& path) {
    QImageReader reader(path);
    const QSize source = readHeader(reader, path);
    if (!source.isValid()) {
        load(path, QSize(ProbeEdge, ProbeEdge));
        return;
    }
    const bool cheap = reader.format() == "jpeg" ||
                       qint64(source.width()) * source.height() <= ProbeDecodesWholeUpTo;
    if (cheap)
        load(path, source.scaled(ProbeEdge, ProbeEdge, Qt::KeepAspectRatio));
}
