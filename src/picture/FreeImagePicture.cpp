#include "FreeImagePicture.h"

#include "AppError.h"
#include "AppGlobals.h"
#include "FreeImageBitmap.h"
#include "FreeImageSource.h"
#include "PictureFile.h"
#include "PictureLength.h"
#include "PictureLimits.h"

#include <QFileInfo>
#include <algorithm>
#include <climits>

namespace {
// What the library said while this thread decoded; it reports through a
// process-wide callback, so each loading thread keeps its own.
thread_local QString t_libraryMessage;

void collectMessage(FREE_IMAGE_FORMAT, const char* message) {
    if (!t_libraryMessage.isEmpty())
        t_libraryMessage += u' ';
    t_libraryMessage += QString::fromLocal8Bit(message);
}

// The library is set up once, on first use from whichever thread, and shut
// down when the program ends.
class Library {
public:
    Library() {
        FreeImage_Initialise(FALSE);
        FreeImage_SetOutputMessage(&collectMessage);
    }
    ~Library() { FreeImage_DeInitialise(); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
};

void useLibrary() {
    static Library library;
}

QString nameOf(const QString& path) {
    return QFileInfo(path).fileName();
}

[[noreturn]] void refuse(const QString& text) {
    throw AppError(FreeImagePicture::ErrorSource, text);
}

[[noreturn]] void undecodable(const QString& path) {
    if (t_libraryMessage.isEmpty())
        refuse(AppGlobals::text("ERR_PICTURE_UNDECODABLE",
                                "The picture %0 cannot be decoded: the file is damaged or not a "
                                "picture the program reads.",
                                {nameOf(path)}));
    refuse(AppGlobals::text("ERR_PICTURE_DECODER", "The picture %0 cannot be decoded: %1",
                            {nameOf(path), t_libraryMessage}));
}

[[noreturn]] void truncated(const QString& path) {
    refuse(AppGlobals::text("ERR_PICTURE_TRUNCATED",
                            "The picture %0 is incomplete: the file ends before the picture does.",
                            {nameOf(path)}));
}

void checkSize(FIBITMAP* header, const QString& path) {
    try {
        PictureLimits::check(QSize(int(std::min(FreeImage_GetWidth(header), unsigned(INT_MAX))),
                                   int(std::min(FreeImage_GetHeight(header), unsigned(INT_MAX)))),
                             FreeImagePicture::ErrorSource);
    } catch (const AppError& error) {
        refuse(AppGlobals::text("ERR_PICTURE_REFUSED", "The picture %0 cannot be used: %1",
                                {nameOf(path), error.description()}));
    }
}

// Qt's readers, for what the library leaves alone or gives up on; when Qt
// cannot read it either, the library's reason is the one worth telling.
QImage readWithQt(const QString& path, bool libraryTried) {
    try {
        return PictureFile::load(path);
    } catch (const AppError& error) {
        if (libraryTried)
            undecodable(path);
        refuse(error.description());
    }
}

void checkComplete(FreeImageSource& source, FREE_IMAGE_FORMAT format, const QString& path) {
    std::optional<qint64> length;
    if (format == FIF_PSD)
        length = PictureLength::required(source.file(), PictureLength::Layered);
    else if (format == FIF_TARGA)
        length = PictureLength::required(source.file(), PictureLength::Targa);
    else if (format == FIF_PCX)
        length = PictureLength::required(source.file(), PictureLength::Pcx);
    if (length && *length > source.file().size())
        truncated(path);
}

QImage decode(FreeImageSource& source, FREE_IMAGE_FORMAT format, const QString& path) {
    {
        const FreeImageBitmapPtr header = source.load(format, FIF_LOAD_NOPIXELS);
        if (!header)
            return readWithQt(path, true);
        checkSize(header.get(), path);
    }
    checkComplete(source, format, path);
    // Phone photos are shown the way up the phone recorded.
    const FreeImageBitmapPtr bitmap = source.load(format, format == FIF_JPEG ? JPEG_EXIFROTATE : 0);
    if (source.ranDry())
        truncated(path);
    if (!bitmap)
        return readWithQt(path, true);
    const QImage image = FreeImageBitmap::toImage(bitmap.get());
    if (image.isNull())
        refuse(AppGlobals::text("ERR_PICTURE_MEMORY",
                                "There is not enough memory to show the picture %0.",
                                {nameOf(path)}));
    return image;
}
} // namespace

QImage FreeImagePicture::load(const QString& path) {
    // Reader threads are reused: what the library said of an earlier file
    // must not be told of this one.
    t_libraryMessage.clear();
    const QFileInfo info(path);
    // A pipe or a device under a picture's name would hold the reader forever.
    if (info.exists() && !info.isFile())
        undecodable(path);
    useLibrary();
    FreeImageSource source(path);
    if (!source.open())
        refuse(AppGlobals::text("ERR_PICTURE_UNREADABLE", "Cannot read the picture %0: %1",
                                {nameOf(path), source.errorString()}));
    FREE_IMAGE_FORMAT format = source.fileType();
    if (format == FIF_UNKNOWN)
        format = FreeImage_GetFIFFromFilename(info.fileName().toLocal8Bit().constData());
    // Without a header of its own the size is known only once every pixel
    // is decoded; Qt's readers tell it first for the formats they share.
    const bool measurable = format != FIF_UNKNOWN && FreeImage_FIFSupportsReading(format) &&
                            FreeImage_FIFSupportsNoPixels(format);
    return measurable ? decode(source, format, path) : readWithQt(path, false);
}
