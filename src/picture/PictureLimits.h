#pragma once

#include <QSize>
#include <QString>

// The largest picture the program reads or writes. Phones take photos of up
// to 200 megapixels, and users put them on slides as they come; anything
// larger is a mistake or a hostile file, and refusing it before its pixels
// are decoded keeps memory use bounded.
class PictureLimits {
public:
    static constexpr qint64 MaxPixels = 200'000'000;

    // True for a non-empty size within MaxPixels.
    static bool fits(const QSize& size);
    // Throws AppError (with the given source) for an empty or an oversized picture.
    static void check(const QSize& size, const QString& source);
    // The same, the text naming the file the picture comes from.
    static void check(const QSize& size, const QString& source, const QString& file);
};
