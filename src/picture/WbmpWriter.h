#pragma once

#include <QByteArray>
#include <QImage>

// Wireless bitmaps (WBMP type 0): one bit per pixel, 1 white and 0 black, rows
// padded to whole bytes. The raster decides how grey becomes black and white.
class WbmpWriter {
public:
    enum Raster {
        Threshold = 1,      // grey 128 and above is white: crisp line art
        OrderedDither = 2,  // an 8x8 Bayer pattern: even areas stay calm
        ErrorDiffusion = 3, // Floyd-Steinberg: the most detail in photographs
    };

    // The file for an opaque picture; raster 1 to 3.
    static QByteArray encode(const QImage& picture, Raster raster);

    // A number of the WBMP header: seven bits per byte, most significant
    // first, the high bit set on every byte but the last.
    static QByteArray multiByteInteger(quint32 value);
};
