#pragma once

#include <QImage>

// Quarter turns and mirror images of a picture in whatever format it was
// loaded: the pixels are moved as they are, so a palette picture keeps its
// palette and indices and nothing is lost by a round of turns.
class PictureTransform {
public:
    // A new picture whose width is the old height and whose height is the
    // old width. Anticlockwise the source pixel (x, y) lands on
    // (y, width - 1 - x); clockwise on (height - 1 - y, x).
    static QImage rotated(const QImage& picture, bool clockwise);
    // horizontal true mirrors left and right (the picture turned over its
    // vertical axis); false mirrors top and bottom.
    static QImage flipped(const QImage& picture, bool horizontal);

private:
    static void copyPixel(const QImage& from, QPoint source, QImage& to, QPoint target);
};
