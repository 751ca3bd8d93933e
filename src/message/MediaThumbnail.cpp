#include "MediaThumbnail.h"

#include "AppError.h"
#include "AppGlobals.h"
#include "FfmpegDecoder.h"
#include "GifAnimation.h"
#include "MediaFrame.h"
#include "MidiFile.h"
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

QImage shrunkTo(const QImage& picture, int edge) {
    if (picture.width() <= edge && picture.height() <= edge)
        return picture;
    return picture.scaled(edge, edge, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

// The picture decoded straight at the size it is shown, when its header
// tells its size: a phone photo costs a thumbnail's memory.
QImage decodeFitted(const QString& path, int edge) {
    const QSize source = QImageReader(path).size();
    const QSize fitted = !source.isValid() ? QSize(edge, edge)
                         : source.width() <= edge && source.height() <= edge
                             ? source
                             : source.scaled(edge, edge, Qt::KeepAspectRatio).expandedTo({1, 1});
    return shrunkTo(MediaFrame::load(path, fitted), edge);
}

qint64 animationLength(const QString& path) {
    if (!MediaFrame::isVideo(path)) {
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
    // Decoded whole, as when it is played: only the samples give the length
    // without the encoder's padding, so the browser and the slide agree.
    PcmSound sound;
    QString error;
    return FfmpegDecoder::decodeAudio(path, sound, error) ? sound.lengthMs() : -1;
}
} // namespace

MediaThumbnail MediaThumbnail::make(const QString& path, int thumbType, const ThumbnailCache& cache,
                                    int edge) {
    if (!QFileInfo(path).isFile()) {
        MediaThumbnail gone;
        gone.error = AppGlobals::text("STR_NO_FILE_FOUND", "File not found!");
        return gone;
    }
    if (thumbType == Sound)
        return sound(path);
    MediaThumbnail result = still(path, cache, edge);
    if (thumbType == Animation && result.error.isEmpty()) {
        const qint64 length = animationLength(path);
        result.detail = length >= 0 ? VbFormat::seconds(length) : QString();
    }
    return result;
}

// From the cache when it holds the file as it is now; otherwise decoded and
// kept there, or remembered as a failure.
MediaThumbnail MediaThumbnail::still(const QString& path, const ThumbnailCache& cache, int edge) {
    MediaThumbnail result;
    result.picture = shrunkTo(cache.lookup(path), edge);
    if (!result.picture.isNull())
        return result;
    if (cache.hasFailed(path)) {
        result.error = undecodable(path);
        return result;
    }
    try {
        const QImage kept = decodeFitted(path, std::max<int>(edge, ThumbnailCache::Normal));
        cache.store(path, kept);
        result.picture = shrunkTo(kept, edge);
    } catch (const AppError& failure) {
        result.error = failure.description();
        cache.storeFailure(path);
    }
    return result;
}

MediaThumbnail MediaThumbnail::sound(const QString& path) {
    MediaThumbnail result;
    const QString kind = modPlaySound::SoundExtension(path);
    const qint64 length = soundLength(path, kind);
    result.detail = length >= 0 ? kind + u' ' + VbFormat::seconds(length) : kind;
    return result;
}
