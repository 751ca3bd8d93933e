#include "ImageWriter.h"

#include "AppError.h"
#include "AppGlobals.h"
#include "PictureLimits.h"
#include "cDIBSection.h"
#include "cDIBSectionSave.h"
#include "clsPropertiesXML.h"

#include "AtomicFile.h"
#include <QImageWriter>

namespace {
const char* const Extensions[] = {"bmp", "jpg", "gif", "png", "wbmp"};

[[noreturn]] void cannotWrite(const QString& path, const QString& reason) {
    QString text = AppGlobals::text("ERR_PICTURE_WRITE", "Cannot write the picture %0: %1");
    text.replace("%0", path);
    text.replace("%1", reason);
    throw AppError(ImageWriter::ErrorSource, text);
}

void writeFile(const QString& path, const QByteArray& bytes) {
    AtomicFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        cannotWrite(path, file.errorString());
}

int settingInRange(clsPropertiesXML& settings, const char* key, const char* fallback, int low,
                   int high) {
    bool ok = false;
    const int value = settings.GetProp("preferences", key, fallback).trimmed().toInt(&ok);
    return ok && value >= low && value <= high ? value : QString(fallback).toInt();
}
} // namespace

ImageWriter::Settings ImageWriter::currentSettings() {
    clsPropertiesXML* settings = AppGlobals::settings();
    return settings ? readSettings(*settings) : Settings{};
}

ImageWriter::Settings ImageWriter::readSettings(clsPropertiesXML& settings) {
    Settings result;
    result.jpgQuality = settingInRange(settings, "JpgQuality", "90", 1, 100);
    result.gif.optimizedPalette =
        settings.GetProp("preferences", "GifOptimizedPalette", "1") == "1";
    result.gif.errorDiffusion = settings.GetProp("preferences", "GifErrorDiffusion", "1") == "1";
    result.wbmpRaster =
        static_cast<WbmpWriter::Raster>(settingInRange(settings, "WbmpRaster", "3", 1, 3));
    return result;
}

int ImageWriter::formatIndex(const QString& extension) {
    QString name = extension.trimmed().toLower();
    if (name.startsWith('.'))
        name.remove(0, 1);
    if (name == "jpeg")
        return Jpeg;
    for (int i = Bmp; i <= Wbmp; ++i)
        if (name == Extensions[i])
            return i;
    return -1;
}

int ImageWriter::formatFromSettings(clsPropertiesXML& settings) {
    const int format = formatIndex(settings.GetProp("preferences", "ImageFormat", "jpg"));
    return format < 0 ? Jpeg : format;
}

QString ImageWriter::extension(int format) {
    return format >= Bmp && format <= Wbmp ? QString(".") + Extensions[format] : QString();
}

void ImageWriter::write(const QImage& picture, int format, const QString& path,
                        const Settings& settings) {
    PictureLimits::check(picture.size(), ErrorSource);
    if (format == Gif) {
        cDIBSectionSave::SaveStdPicture(picture, path, settings.gif);
        return;
    }
    if (format < Bmp || format > Wbmp) {
        QString text = AppGlobals::text("ERR_PICTURE_FORMAT", "Unknown picture format %0.");
        throw AppError(ErrorSource, text.replace("%0", QString::number(format)));
    }
    // Every format without transparency gets the picture over white.
    cDIBSection dib;
    if (!dib.LoadPictureBlt(picture))
        cannotWrite(path, "out of memory");
    switch (format) {
    case Bmp:
        return writeAs(dib.image(), path, "bmp", -1);
    case Jpeg:
        return writeAs(dib.image(), path, "jpeg", settings.jpgQuality);
    case Png:
        return writeAs(dib.image(), path, "png", -1);
    default:
        return writeFile(path, WbmpWriter::encode(dib.image(), settings.wbmpRaster));
    }
}

void ImageWriter::writeAs(const QImage& picture, const QString& path, const char* format,
                          int quality) {
    AtomicFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        cannotWrite(path, file.errorString());
    QImageWriter writer(&file, format);
    writer.setQuality(quality);
    if (!writer.write(picture))
        cannotWrite(path, writer.errorString());
    if (!file.commit())
        cannotWrite(path, file.errorString());
}
