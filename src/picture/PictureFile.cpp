#include "PictureFile.h"

#include "AppError.h"
#include "AppGlobals.h"
#include "PictureLimits.h"

#include <QImageReader>

namespace {
[[noreturn]] void unreadable(const QString& path, const QString& reason) {
    QString text = AppGlobals::text("ERR_PICTURE_UNREADABLE", "Cannot read the picture %0: %1");
    text.replace("%0", path);
    text.replace("%1", reason);
    throw AppError(PictureFile::ErrorSource, text);
}
} // namespace

QImage PictureFile::load(const QString& path) {
    QImageReader reader(path);
    if (!reader.canRead())
        unreadable(path, reader.errorString());
    const QSize announced = reader.size();
    if (announced.isValid())
        PictureLimits::check(announced, ErrorSource);
    QImage picture;
    if (!reader.read(&picture))
        unreadable(path, reader.errorString());
    PictureLimits::check(picture.size(), ErrorSource);
    return picture;
}
