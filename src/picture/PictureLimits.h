#pragma once

#include <QSize>
#include <QString>

// The largest picture the program encodes: a slide picture is a few hundred
// pixels wide, so anything near this size is a mistake or a hostile file, and
// refusing it early keeps memory use bounded.
class PictureLimits {
public:
    static constexpr qint64 MaxPixels = 40'000'000;

    // True for a non-empty size within MaxPixels.
    static bool fits(const QSize& size);
    // Throws AppError (with the given source) for an empty or an oversized picture.
    static void check(const QSize& size, const QString& source);
};
