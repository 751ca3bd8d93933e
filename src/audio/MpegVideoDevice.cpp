#include "MpegVideoDevice.h"

#include "FfmpegDecoder.h"
#include "GifAnimation.h"
#include "MciError.h"

#include <QFileInfo>

int MpegVideoDevice::open(const QString& path, AudioBackend& backend,
                          std::unique_ptr<MciDevice>& device, QString& detail) {
    if (!QFileInfo(path).isFile()) {
        detail = path;
        return MciError::FileNotFound;
    }
    std::unique_ptr<MpegVideoDevice> video(new MpegVideoDevice(backend));
    if (!video->load(path, detail))
        return MciError::InvalidFile;
    device = std::move(video);
    return MciError::None;
}

bool MpegVideoDevice::load(const QString& path, QString& detail) {
    if (QFileInfo(path).suffix().compare(QLatin1String("gif"), Qt::CaseInsensitive) == 0) {
        GifAnimation::Info gif;
        if (!GifAnimation::read(path, gif)) {
            detail = QStringLiteral("not a readable GIF animation");
            return false;
        }
        m_lengthMs = gif.lengthMs;
        return true;
    }
    FfmpegDecoder::MediaInfo info;
    if (!FfmpegDecoder::probe(path, info, detail))
        return false;
    if (info.hasVideo) {
        m_lengthMs = info.lengthMs;
        if (m_lengthMs < 0)
            detail = QStringLiteral("the video does not tell its length");
        return m_lengthMs >= 0;
    }
    // A sound is measured from its packets and decoded only to be played.
    if (!FfmpegDecoder::audioLengthMs(path, m_lengthMs, detail))
        return false;
    m_path = path;
    m_hasSound = true;
    return true;
}

int MpegVideoDevice::playable(PcmSound& sound) {
    QString why;
    if (m_hasSound && m_sound.frames() == 0 && !FfmpegDecoder::decodeAudio(m_path, m_sound, why))
        return fail(MciError::InvalidFile, why);
    sound = m_sound;
    return MciError::None;
}
