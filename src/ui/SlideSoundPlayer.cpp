#include "SlideSoundPlayer.h"

#include "AmrConverter.h"
#include "AppGlobals.h"
#include "Mci.h"
#include "modPlaySound.h"

#include <QFileInfo>

SlideSoundPlayer::SlideSoundPlayer(QObject* parent) : QObject(parent) {
    m_poll.setInterval(100);
    connect(&m_poll, &QTimer::timeout, this, &SlideSoundPlayer::poll);
}

SlideSoundPlayer::~SlideSoundPlayer() {
    if (isPlaying())
        modPlaySound::StopSound();
}

QString SlideSoundPlayer::playableCopy(const QString& path, QString* why) {
    if (modPlaySound::SoundExtension(path) != QLatin1String("AMR"))
        return path;
    if (!m_copies.isValid()) {
        *why = m_copies.errorString();
        return QString();
    }
    const QString copy = m_copies.path() + u'/' + QFileInfo(path).completeBaseName() + ".wav";
    const int result = AmrConverter::amr2wav(path, copy);
    if (result == 0)
        return copy;
    *why = AmrConverter::errorText(result, copy);
    return QString();
}

bool SlideSoundPlayer::play(const QString& path, QString* why) {
    stop();
    if (!QFileInfo(path).isFile()) {
        *why = AppGlobals::text("STR_NO_FILE_FOUND", "The file cannot be found.");
        return false;
    }
    const QString playable = playableCopy(path, why);
    if (playable.isEmpty())
        return false;
    const int error = modPlaySound::PlaySound(playable);
    if (error != 0) {
        *why = error == modPlaySound::kNotPlayable
                   ? AppGlobals::text("STR_SOUND_NOT_PLAYABLE",
                                      "This kind of sound cannot be played here: %0",
                                      {QFileInfo(path).fileName()})
                   : Mci::mciGetErrorString(error);
        return false;
    }
    m_poll.start();
    return true;
}

void SlideSoundPlayer::stop() {
    if (!isPlaying())
        return;
    m_poll.stop();
    modPlaySound::StopSound();
    emit stopped();
}

void SlideSoundPlayer::poll() {
    QString mode;
    std::int64_t position = -1;
    modPlaySound::GetPlayStatus(mode, position);
    if (mode != QLatin1String("playing"))
        stop();
}
