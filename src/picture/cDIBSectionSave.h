#pragma once

#include "GifOptions.h"

#include <QByteArray>
#include <QImage>
#include <QString>

// Writes palette pictures as GIF89a files with the program's own encoder.
class cDIBSectionSave {
public:
    static constexpr const char* ErrorSource = "cDIBSectionSave.Save";
    static constexpr const char* CreditLine = "Vellumo GIF encoder";

    // The whole file for a picture of palette indices (QImage::Format_Indexed8
    // with its colour table). Throws AppError for a picture that has no
    // pixels or no colours.
    static QByteArray Encode(const QImage& indexed, const GifOptions& options = {});
    // Encodes and writes the file; throws AppError when it cannot be written.
    static void Save(const QString& fileName, const QImage& indexed,
                     const GifOptions& options = {});

    // Draws the picture into a new 24-bit bitmap, reduces it to a palette
    // (optimal or standard, with or without error diffusion) and writes the
    // GIF. With useTempName the file is written beside fileName under the same
    // name prefixed "TMP" (an older one is deleted first). Returns the path
    // written.
    static QString SaveStdPicture(const QImage& picture, const QString& fileName,
                                  const GifOptions& options = {}, bool useTempName = false);

    // The smallest bits per pixel whose table holds that many colours (1 to 8).
    static int bitsPerPixel(int colours);
};
