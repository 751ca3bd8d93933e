#include "MediaThumbnail.h"

#include "AppError.h"
#include "AppGlobals.h"
#include "FfmpegDecoder.h"
#include "GifAnimation.h"
#include "MidiFile.h"
#include "PictureFile.h"
#include "ThumbnailCache.h"
#include "VbFormat.h"
#include "modPlaySound.h"

#include <QFileInfo>
#include <QImageReader>

namespace {
QString undecodable(const QString& path) {
    return AppGlobals::text("ERR_PICTURE_UNDECODABLE",
                            "The picture %0 cannot be decoded: the file is damaged or not a "
                            "picture the program reads.",
                            {QFileInfo(path).fileName()});
}

// The size a picture of size source has when fitted into edge x edge; the
// picture's own size when it is smaller.
QSize fitted(QSize source, int edge) {
    if (!source.isValid())
        return QSize(edge, edge);
    if (source.width() <= edge && source.height() <= edge)
        return source;
    return source.scaled(edge, edge, Qt::KeepAspectRatio).expandedTo(QSize(1, 1));
}

// The picture decoded straight at the size it is shown: a phone photo costs
// a thumbnail's memory.
QImage decodeFitted(const QString& path, int edge) {
    const QSize source = QImageReader(path).size();
    QImage picture = PictureFile::load(path, fitted(source, edge));
    if (picture.width() > edge || picture.height() > edge)
        picture = picture.scaled(edge, edge, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    return picture;
}

bool isGif(const QString& path) {
    return path.endsWith(QLatin1String(".gif"), Qt::CaseInsensitive);
}

// An animation's first picture, from the cache when it is there.
QImage firstFrame(const QString& path, const ThumbnailCache& cache, int edge, QString& error,
                  bool& fromCache) {
    QImage frame = cache.lookup(path);
    fromCache = !frame.isNull();
    if (fromCache)
        return frame;
    if (isGif(path)) {
        try {
            frame = decodeFitted(path, edge);
        } catch (const AppError& failure) {
            error = failure.description();
        }
    } else if (FfmpegDecoder::firstVideoFrame(path, frame, error)) {
        frame = frame.scaled(fitted(frame.size(), edge), Qt::IgnoreAspectRatio,
                             Qt::SmoothTransformation);
    }
    if (!frame.isNull())
        cache.store(path, frame);
    return frame;
}

qint64 animationLength(const QString& path) {
    if (isGif(path)) {
        GifAnimation::Info info;
        return GifAnimation::read(path, info) ? info.lengthMs : -1;
    }
    FfmpegDecoder::MediaInfo info;
    QString error;
    return FfmpegDecoder::probe(path, info, error) ? info.lengthMs : -1;
}

qint64 soundLength(const QString& path, const QString& kind) {
    if (kind == QLatin1String("MID") || kind == QLatin1String("MIDI")) {
        MidiFile::Info info;
        return MidiFile::read(path, info) == MidiFile::Error::None ? info.lengthMs : -1;
    }
    // iMelody is a text the phone plays; nothing here measures it.
    if (kind == QLatin1String("IMY"))
        return -1;
    FfmpegDecoder::MediaInfo info;
    QString error;
    return FfmpegDecoder::probe(path, info, error) && info.hasAudio ? info.lengthMs : -1;
}
} // namespace

QString MediaThumbnail::seconds(qint64 milliseconds) {
    return VbFormat::format(double(milliseconds) / 1000.0, QStringLiteral("#0.0")) + u's';
}

MediaThumbnail MediaThumbnail::make(const QString& path, int thumbType, const ThumbnailCache& cache,
                                    int edge) {
    if (!QFileInfo(path).isFile()) {
        MediaThumbnail gone;
        gone.error = AppGlobals::text("STR_NO_FILE_FOUND", "File not found!");
        return gone;
    }
    switch (thumbType) {
    case Sound:
        return sound(path);
    case Animation:
        return animation(path, cache, edge);
    default:
        return still(path, cache, edge);
    }
}

MediaThumbnail MediaThumbnail::still(const QString& path, const ThumbnailCache& cache, int edge) {
    MediaThumbnail result;
    result.picture = cache.lookup(path);
    result.fromCache = !result.picture.isNull();
    if (result.fromCache) {
        if (result.picture.width() > edge || result.picture.height() > edge)
            result.picture =
                result.picture.scaled(edge, edge, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        return result;
    }
    if (cache.hasFailed(path)) {
        result.error = undecodable(path);
        return result;
    }
    try {
        result.picture = decodeFitted(path, std::max<int>(edge, ThumbnailCache::Normal));
        cache.store(path, result.picture);
        if (result.picture.width() > edge || result.picture.height() > edge)
            result.picture =
                result.picture.scaled(edge, edge, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    } catch (const AppError& failure) {
        result.error = failure.description();
        cache.storeFailure(path);
    }
    return result;
}

MediaThumbnail MediaThumbnail::animation(const QString& path, const ThumbnailCache& cache,
                                         int edge) {
    MediaThumbnail result;
    result.picture = firstFrame(path, cache, edge, result.error, result.fromCache);
    if (result.picture.isNull()) {
        if (result.error.isEmpty() || !isGif(path))
            result.error = undecodable(path);
        return result;
    }
    const qint64 length = animationLength(path);
    result.detail = length >= 0 ? seconds(length) : QString();
    return result;
}

MediaThumbnail MediaThumbnail::sound(const QString& path) {
    MediaThumbnail result;
    const QString kind = modPlaySound::SoundExtension(path);
    const qint64 length = soundLength(path, kind);
    result.detail = length >= 0 ? kind + u' ' + seconds(length) : kind;
    return result;
}
