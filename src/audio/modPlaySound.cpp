#include "modPlaySound.h"

#include "Mci.h"

#include <QFileInfo>

namespace {
const QString kAlias = QStringLiteral("playsound");

QString query(const QString& command) {
    QString reply;
    if (mciSendString(command, &reply, modPlaySound::kReplySize) != 0 || reply.isEmpty())
        return QStringLiteral("-1");
    return reply;
}

void closeAlias() {
    mciSendString("stop " + kAlias, nullptr, 0);
    mciSendString("close " + kAlias, nullptr, 0);
}
} // namespace

QString modPlaySound::SoundExtension(const QString& path) {
    const QString name = QFileInfo(path).fileName();
    const qsizetype dot = name.lastIndexOf(QLatin1Char('.'));
    return dot < 0 ? QString() : name.mid(dot + 1).toUpper();
}

QString modPlaySound::OpenCommand(const QString& extension) {
    if (extension == QLatin1String("WAV"))
        return QStringLiteral("open waveaudio!");
    if (extension == QLatin1String("MID") || extension == QLatin1String("MIDI") ||
        extension == QLatin1String("MI"))
        return QStringLiteral("open sequencer!");
    if (extension == QLatin1String("MP3"))
        return QStringLiteral("open MPEGVideo!");
    return {}; // "IMY" is known but no device plays it; AMR plays from its converted WAV
}

int modPlaySound::PlaySound(const QString& path) {
    closeAlias();
    const QString open = OpenCommand(SoundExtension(path));
    if (open.isEmpty())
        return kNotPlayable;
    if (const int error = mciSendString(open + path + " alias " + kAlias, nullptr, 0); error != 0)
        return error;
    return mciSendString("play " + kAlias + " from 1", nullptr, 0);
}

void modPlaySound::StopSound() {
    closeAlias();
}

QString modPlaySound::GetSoundInfo(const QString& path) {
    const QString extension = SoundExtension(path);
    if (extension.isEmpty())
        return QStringLiteral("---;-1;-1;-1");
    const QString unknown = extension + QStringLiteral(";-1;-1;-1");
    const QString open = OpenCommand(extension);
    if (open.isEmpty())
        return unknown;
    closeAlias();
    if (mciSendString(open + path + " alias " + kAlias, nullptr, 0) != 0)
        return unknown;
    mciSendString("set " + kAlias + " time format ms", nullptr, 0);
    const QString info = extension + ";" + query("status " + kAlias + " length") + ";" +
                         query("status " + kAlias + " samplespersec") + ";" +
                         query("status " + kAlias + " bitspersample");
    closeAlias();
    return info;
}

void modPlaySound::GetPlayStatus(QString& mode, std::int64_t& position) {
    QString reply;
    mode = mciSendString("status " + kAlias + " mode", &reply, kReplySize) == 0
               ? reply
               : QStringLiteral("stopped");
    bool ok = false;
    position = query("status " + kAlias + " position").toLongLong(&ok);
    if (!ok)
        position = -1;
}
