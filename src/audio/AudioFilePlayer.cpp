#include "AudioFilePlayer.h"

#include "Mci.h"
#include "modPlaySound.h"

namespace {
const QString kAlias = QStringLiteral("csound");

int send(const QString& command, QString* reply = nullptr) {
    return mciSendString(command, reply, AudioFilePlayer::kReplySize);
}
} // namespace

int AudioFilePlayer::Open(const QString& path) {
    m_lengthMs = -1;
    send("stop " + kAlias);
    send("close " + kAlias);
    const QString open = modPlaySound::OpenCommand(modPlaySound::SoundExtension(path));
    if (open.isEmpty())
        return modPlaySound::kNotPlayable;
    QString reply;
    for (const QString& command :
         {open + path + " alias " + kAlias, "set " + kAlias + " time format ms"})
        if (const int error = send(command); error != 0)
            return error;
    if (const int error = send("status " + kAlias + " length", &reply); error != 0)
        return error;
    m_lengthMs = reply.toLongLong();
    return 0;
}

int AudioFilePlayer::Play(std::int64_t fromMs, std::int64_t toMs) {
    send("stop " + kAlias);
    if (fromMs == -1 || toMs == -1)
        return send("play " + kAlias);
    return send(QStringLiteral("play %1 from %2 to %3").arg(kAlias).arg(fromMs).arg(toMs));
}

int AudioFilePlayer::Stop() {
    return send("stop " + kAlias);
}

void AudioFilePlayer::Close() {
    send("close " + kAlias);
    m_lengthMs = -1;
}

int AudioFilePlayer::Poll(QString& mode, std::int64_t& positionMs) {
    QString reply;
    if (const int error = send("status " + kAlias + " mode", &mode); error != 0)
        return error;
    const int error = send("status " + kAlias + " position", &reply);
    positionMs = error == 0 ? reply.toLongLong() : -1;
    return error;
}

QString AudioFilePlayer::Status(const QString& item) const {
    QString reply;
    return send("status " + kAlias + u' ' + item, &reply) == 0 ? reply.trimmed() : QString();
}
