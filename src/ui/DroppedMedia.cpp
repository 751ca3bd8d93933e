#include "DroppedMedia.h"

#include "AppPaths.h"

#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

namespace {
const QString kPictures = QStringLiteral(".bmp.jpg.jpeg.gif.png.tif.wbmp");
const QString kSounds = QStringLiteral(".mid.midi.mi.mp3.amr");
} // namespace

QString DroppedMedia::extensionOf(const QString& path) {
    return AppPaths::extensionOf(QFileInfo(path).fileName());
}

DroppedMedia::Kind DroppedMedia::kindOf(const QString& path) {
    if (QFileInfo(path).isDir())
        return Folder;
    const QString extension = extensionOf(path).toLower();
    if (kPictures.contains(extension))
        return Picture;
    if (kSounds.contains(extension))
        return Sound;
    return Unknown;
}

QString DroppedMedia::pathFrom(const QMimeData& data) {
    if (data.hasUrls()) {
        for (const QUrl& url : data.urls())
            if (url.isLocalFile())
                return url.toLocalFile();
        return QString();
    }
    return data.hasText() ? data.text().section(u';', 0, 0).trimmed() : QString();
}
