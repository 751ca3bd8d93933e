#pragma once

#include <QImage>
#include <QSize>
#include <QString>

// Reads a picture in any format Qt reads, and in those of the picture
// library (Targa, PCX, Photoshop, SGI, JPEG 2000 ...) where Qt has no reader
// for the file's bytes, whatever the file is named. Every user picture the
// program draws, converts or takes in is decoded by load, so the same
// pictures are refused everywhere: files that do not decode or are cut off,
// empty pictures, and those beyond PictureLimits::MaxPixels, before their
// pixels are decoded.
class PictureFile {
public:
    static constexpr const char* ErrorSource = "PictureFile.Load";

    // Without a size, the whole picture, as the encoders need it. With one,
    // the picture as it will be drawn into that many pixels (stretched, as a
    // background fills the slide and an image its rectangle), but never
    // larger than it is in either direction: a phone photo on a slide then
    // costs the slide's memory, not the photo's.
    // Throws AppError with a text for the user when the file cannot be used.
    static QImage load(const QString& path, QSize drawnSize = QSize());

    // Throws what load would for a picture that cannot be used, for a
    // window or script to refuse it when it is added. A big picture is not
    // decoded whole for that: its header is read, and a thumbnail tried
    // where the format decodes one cheaply.
    static void probe(const QString& path);
};
