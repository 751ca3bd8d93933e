#pragma once

#include <QImage>
#include <QString>

// Reads a picture in any of the many formats of the picture library
// (Photoshop, Targa, PCX, TIFF, camera raw ...), for the picture browser.
// Like PictureFile, it refuses a picture beyond PictureLimits from its
// header alone, before any pixel is decoded, and a damaged or cut-off file
// with the program's own message. Pictures the library cannot measure
// before decoding, or does not read at all, are left to PictureFile.
class FreeImagePicture {
public:
    static constexpr const char* ErrorSource = "FreeImagePicture.Load";

    // Throws AppError with a text for the user naming the file and why it
    // cannot be used.
    static QImage load(const QString& path);
};
