#pragma once

#include <QImage>
#include <QString>

// Reads a picture in any format Qt reads, refusing empty pictures and those
// beyond PictureLimits::MaxPixels before their pixels are decoded.
class PictureFile {
public:
    static constexpr const char* ErrorSource = "PictureFile.Load";
    // Throws AppError with a text for the user when the file cannot be used.
    static QImage load(const QString& path);
};
