#pragma once

#include "QtPrinters.h"

#include <QColor>
#include <QSize>
#include <QString>

// Pictures as users bring them: phone photos far larger than a slide, and
// files that only look like pictures. All are made at run time.
class PhotoSamples {
public:
    // A JPEG from ImageMagick, red along the top fading to blue along the
    // bottom. Returns ImageMagick's complaint, empty on success.
    static QString gradientJpeg(const QString& path, QSize size);
    // The colour of those pictures at a fraction of their height.
    static QColor gradientAt(double down);
    // Colours within what JPEG and scaling make of each other.
    static bool near(const QColor& seen, const QColor& expected);
    // A few hundred bytes of PNG whose header claims the given size, its
    // checksum right, so a reader believes it until it reaches the pixels.
    static void pngClaiming(const QString& path, QSize claimed);
    // Bytes from a fixed random sequence under a picture's name.
    static void randomBytes(const QString& path, int count);
    // The first bytes of a real JPEG, cut off inside its header.
    static void truncatedJpegHeader(const QString& path);
};
