#include "FreeImagePicture.h"

#include "AppError.h"
#include "FreeImageReader.h"
#include "PictureFile.h"

#include <QFileInfo>

namespace {
// Qt's readers, for what the library leaves alone or gives up on; when Qt
// cannot read it either, the library's reason is the one worth telling.
QImage readWithQt(const QString& path, const FreeImageReader* triedLibrary) {
    try {
        return PictureFile::load(path);
    } catch (const AppError& error) {
        if (triedLibrary)
            triedLibrary->refuseUndecodable();
        throw AppError(FreeImagePicture::ErrorSource, error.description());
    }
}
} // namespace

QImage FreeImagePicture::load(const QString& path) {
    FreeImageReader library(path, QFileInfo(path).fileName(), ErrorSource);
    if (library.format() == FIF_UNKNOWN)
        return readWithQt(path, nullptr);
    if (!library.size().isValid())
        return readWithQt(path, &library);
    // Phone photos are shown the way up the phone recorded.
    const QImage picture = library.read(library.format() == FIF_JPEG ? JPEG_EXIFROTATE : 0);
    return picture.isNull() ? readWithQt(path, &library) : picture;
}
