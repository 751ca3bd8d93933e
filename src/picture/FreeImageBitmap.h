#pragma once

#include <FreeImage.h>
#include <QImage>

// A decoded bitmap of the picture library turned into a QImage. Palette
// pictures of 1 and 8 bits stay palette pictures, 24 and 32 bits are
// copied row by row, everything else (4 and 16 bits, 16 bits per channel,
// floating point) is first converted to 32 bits by the library.
class FreeImageBitmap {
public:
    // A null image when memory for the copy runs out.
    static QImage toImage(FIBITMAP* bitmap);

private:
    static QImage copyRows(FIBITMAP* bitmap, QImage::Format format);
    static QImage withPalette(FIBITMAP* bitmap, QImage::Format format);
    static QImage trueColour(FIBITMAP* bitmap);
    static QImage converted(FIBITMAP* bitmap);
};
