#include "PictureFile.h"

#include "AppError.h"
#include "AppGlobals.h"
#include "FreeImageReader.h"
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

bool noFile(const QImageReader& reader) {
    return reader.error() == QImageReader::FileNotFoundError ||
           reader.error() == QImageReader::DeviceError;
}

[[noreturn]] void refuse(const QImageReader& reader, const QString& path) {
    QString text =
        noFile(reader)
            ? AppGlobals::text("ERR_PICTURE_UNREADABLE", "Cannot read the picture %0: %1")
            : AppGlobals::text("ERR_PICTURE_UNDECODABLE",
                               "The picture %0 cannot be decoded: the file is "
                               "damaged or not a picture the program reads.");
    text.replace("%0", path);
    text.replace("%1", reader.errorString());
    throw AppError(PictureFile::ErrorSource, text);
}

// The picture's size from its header, invalid for formats that tell no
// size; refused when the size is out of bounds. False when Qt has no
// reader for the bytes.
bool readHeader(QImageReader& reader, const QString& path, QSize& size) {
    allowTheLargestPicture();
    // A file named for one format and holding another is read as what it holds.
    reader.setDecideFormatFromContent(true);
    if (!reader.canRead())
        return false;
    // Kept for after a failed decode, which makes the reader forget it.
    reader.setFormat(reader.format());
    size = reader.size();
    if (size.isValid())
        PictureLimits::check(size, PictureFile::ErrorSource, path);
    return size.isValid() || !reader.supportsOption(QImageIOHandler::Size);
}

// Invalid for the whole picture, else the size it is decoded at to be drawn
// into drawnSize pixels.
QSize decodedSize(QSize source, QSize drawnSize) {
    if (!drawnSize.isValid())
        return QSize();
    // Even a picture drawn into no pixels costs one, never the whole picture.
    const QSize size = drawnSize.expandedTo(QSize(1, 1));
    const QSize wanted = source.isValid() ? size.boundedTo(source) : size;
    return wanted == source ? QSize() : wanted;
}

// The whole picture for an invalid size, else the picture scaled to it;
// false when Qt's reader gives up.
bool decode(QImageReader& reader, const QString& path, QSize size, QImage& picture) {
    if (size.isValid())
        reader.setScaledSize(size);
    if (!reader.read(&picture))
        return false;
    PictureLimits::check(picture.size(), PictureFile::ErrorSource, path);
    return true;
}

// Several formats Qt does not read, and others of which Qt reads only some
// kinds (Targa files without the footer of the format's second version, for
// one, which Qt even takes for a Windows cursor), are read by the picture
// library. Where the library would only try the format Qt tried, or does not
// know the bytes either, Qt's reason is told.
class Library {
public:
    Library(const QImageReader& failed, const QString& path)
        : m_reader(existing(failed, path), path, PictureFile::ErrorSource) {
        if (m_reader.format() == FIF_UNKNOWN || m_reader.isFormat(failed.format()))
            refuse(failed, path);
    }

    QSize size() {
        const QSize size = m_reader.size();
        if (!size.isValid())
            m_reader.refuseUndecodable();
        return size;
    }

    QImage read() {
        const QImage picture = m_reader.read();
        if (picture.isNull())
            m_reader.refuseUndecodable();
        return picture;
    }

private:
    // A file that is not there is not tried again.
    static const QString& existing(const QImageReader& failed, const QString& path) {
        if (noFile(failed))
            refuse(failed, path);
        return path;
    }

    FreeImageReader m_reader;
};

QImage loadWithLibrary(const QImageReader& failed, const QString& path, QSize drawnSize) {
    Library library(failed, path);
    const QSize size = decodedSize(library.size(), drawnSize);
    const QImage picture = library.read();
    return size.isValid() ? picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                          : picture;
}

void probeWithLibrary(const QImageReader& failed, const QString& path) {
    Library library(failed, path);
    const QSize size = library.size();
    if (qint64(size.width()) * size.height() <= ProbeDecodesWholeUpTo)
        library.read();
}
} // namespace

QImage PictureFile::load(const QString& path, QSize drawnSize) {
    QImageReader reader(path);
    QSize source;
    QImage picture;
    if (readHeader(reader, path, source) &&
        decode(reader, path, decodedSize(source, drawnSize), picture))
        return picture;
    return loadWithLibrary(reader, path, drawnSize);
}

void PictureFile::probe(const QString& path) {
    QImageReader reader(path);
    QSize source;
    if (!readHeader(reader, path, source))
        return probeWithLibrary(reader, path);
    if (!source.isValid()) {
        load(path, QSize(ProbeEdge, ProbeEdge));
        return;
    }
    const bool cheap = reader.format() == "jpeg" ||
                       qint64(source.width()) * source.height() <= ProbeDecodesWholeUpTo;
    if (cheap)
        load(path, source.scaled(ProbeEdge, ProbeEdge, Qt::KeepAspectRatio));
}
