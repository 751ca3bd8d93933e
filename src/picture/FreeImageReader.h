#pragma once

#include "FreeImageSource.h"

#include <QByteArray>
#include <QImage>
#include <QSize>
#include <QString>

// One picture file read by the picture library, with the program's guards
// around it: the format is told by the file's bytes, never by its name; the
// size is read from the header and held to PictureLimits before any pixel
// is decoded; a cut-off file is refused instead of decoded into garbage.
// Every refusal throws AppError with the given source and a text for the
// user naming the file as given.
class FreeImageReader {
public:
    // Throws when the file cannot be opened or is no plain file.
    FreeImageReader(const QString& path, QString shownName, const char* errorSource);

    // The format of the file, FIF_UNKNOWN when the library does not read it
    // or cannot tell its size before decoding every pixel.
    FREE_IMAGE_FORMAT format() const { return m_format; }
    // True when the format is the one Qt's reader of that name reads
    // ("png", "tiff" ...), so the library would only read the same bytes again.
    bool isFormat(const QByteArray& qtName) const;
    // The size from the header, refused beyond the limits or when the file
    // is shorter than its header says; invalid when the header does not read.
    QSize size();
    // Every pixel, with the library's loading flags; refused when the file
    // is cut off or memory runs out; a null image when the decoder gives up.
    QImage read(int flags = 0);
    // Refuses the file as one that does not decode, with the library's
    // reason when it gave one.
    [[noreturn]] void refuseUndecodable() const;

private:
    QSize declaredSize();
    [[noreturn]] void refuseIncomplete() const;
    [[noreturn]] void refuse(const QString& text) const;
    void checkComplete();

    QString m_shownName;
    const char* m_errorSource;
    FreeImageSource m_source;
    FREE_IMAGE_FORMAT m_format = FIF_UNKNOWN;
};
