#include "PictureLimits.h"

#include "AppError.h"
#include "AppGlobals.h"

bool PictureLimits::fits(const QSize& size) {
    return size.width() > 0 && size.height() > 0 &&
           qint64(size.width()) * size.height() <= MaxPixels;
}

void PictureLimits::check(const QSize& size, const QString& source) {
    if (size.width() <= 0 || size.height() <= 0)
        throw AppError(source, AppGlobals::text("ERR_PICTURE_EMPTY",
                                                "The picture is empty: it has no pixels."));
    if (fits(size))
        return;
    QString text = AppGlobals::text(
        "ERR_PICTURE_TOO_LARGE",
        "The picture has %0 x %1 pixels; pictures of more than %2 megapixels are refused.");
    text.replace("%0", QString::number(size.width()));
    text.replace("%1", QString::number(size.height()));
    text.replace("%2", QString::number(MaxPixels / 1'000'000));
    throw AppError(source, text);
}

void PictureLimits::check(const QSize& size, const QString& source, const QString& file) {
    try {
        check(size, source);
    } catch (const AppError& error) {
        throw AppError(source,
                       AppGlobals::text("ERR_PICTURE_REFUSED", "The picture %0 cannot be used: %1",
                                        {file, error.description()}));
    }
}
