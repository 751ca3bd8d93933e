#pragma once

#include "GifOptions.h"
#include "WbmpWriter.h"

#include <QImage>
#include <QString>

class clsPropertiesXML;

// Writes a picture in one of the program's five picture formats, chosen by
// index; the encoder settings come from the settings store.
class ImageWriter {
public:
    static constexpr const char* ErrorSource = "SavePictureBoxImage";
    enum Format { Bmp = 0, Jpeg = 1, Gif = 2, Png = 3, Wbmp = 4 };

    struct Settings {
        int jpgQuality = 90;
        GifOptions gif;
        WbmpWriter::Raster wbmpRaster = WbmpWriter::ErrorDiffusion;
    };

    // "JpgQuality", "GifOptimizedPalette", "GifErrorDiffusion" and "WbmpRaster"
    // of section "preferences"; values out of range give the defaults.
    static Settings readSettings(clsPropertiesXML& settings);
    // Those of the program's settings; the defaults when none are open.
    static Settings currentSettings();
    // The index of a format named by its file extension ("bmp", "jpg", "gif",
    // "png", "wbmp"; "jpeg" too, any case, with or without the dot); -1 for
    // anything else.
    static int formatIndex(const QString& extension);
    // The "ImageFormat" setting of section "preferences" as an index; jpg
    // when it names no format.
    static int formatFromSettings(clsPropertiesXML& settings);
    // ".bmp", ".jpg", ".gif", ".png" or ".wbmp".
    static QString extension(int format);

    // Throws AppError for an empty or oversized picture, an unknown format
    // or a file that cannot be written; the target is replaced only once the
    // new file is complete.
    // The picture as it is, in one of Qt's formats ("bmp", "png", ...); a
    // failure throws AppError with the reason. Nothing is left half written.
    static void writeAs(const QImage& picture, const QString& path, const char* format,
                        int quality = -1);
    static void write(const QImage& picture, int format, const QString& path,
                      const Settings& settings);
};
