#include "PictureTransform.h"

#include <cstring>

QImage PictureTransform::rotated(const QImage& picture, bool clockwise) {
    if (picture.isNull())
        return QImage();
    const int width = picture.width();
    const int height = picture.height();
    QImage result(height, width, picture.format());
    if (result.isNull())
        return QImage();
    result.setColorTable(picture.colorTable());
    result.setDotsPerMeterX(picture.dotsPerMeterY());
    result.setDotsPerMeterY(picture.dotsPerMeterX());
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const QPoint target = clockwise ? QPoint(height - 1 - y, x) : QPoint(y, width - 1 - x);
            copyPixel(picture, QPoint(x, y), result, target);
        }
    return result;
}

QImage PictureTransform::flipped(const QImage& picture, bool horizontal) {
    return picture.mirrored(horizontal, !horizontal);
}

void PictureTransform::copyPixel(const QImage& from, QPoint source, QImage& to, QPoint target) {
    const int depth = from.depth();
    if (depth < 8) {
        // Bit-packed rows: the format knows its own bit order.
        to.setPixel(target, from.pixelIndex(source));
        return;
    }
    const int bytes = depth / 8;
    std::memcpy(to.scanLine(target.y()) + target.x() * bytes,
                from.constScanLine(source.y()) + source.x() * bytes, bytes);
}
