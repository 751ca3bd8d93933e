#include "SoundIntake.h"

#include "AmrConverter.h"
#include "AppGlobals.h"
#include "WavHeader.h"
#include "clsMMSManager.h"
#include "modPlaySound.h"

#include <QFile>
#include <QStringList>
#include <QtEndian>

SoundIntake::Info SoundIntake::measure(const QString& path) {
    const QStringList parts = modPlaySound::GetSoundInfo(path).split(QLatin1Char(';'));
    Info info;
    info.kind = parts.value(0);
    bool known = false;
    const qint64 length = parts.value(1).toLongLong(&known);
    info.length = known ? length : -1;
    info.samplesPerSecond = parts.value(2);
    info.bitsPerSample = parts.value(3);
    // What is left of a cut-off WAV would play, but it is not the sound the user meant.
    if (info.kind == QLatin1String("WAV") && cutShort(path))
        info.length = -1;
    return info;
}

// A RIFF file shorter than its header says: an unfinished download or copy.
// Writers that stream leave the size open (0 or all ones); a pad byte's
// worth of difference is a common slip, not a loss.
bool SoundIntake::cutShort(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray head = file.read(8);
    if (head.size() < 8 || !head.startsWith("RIFF"))
        return false;
    const quint32 declared = qFromLittleEndian<quint32>(head.constData() + 4);
    return declared != 0 && declared != 0xFFFFFFFFu && qint64(declared) + 8 > file.size() + 1;
}

bool SoundIntake::understood(const Info& info) {
    static const QStringList whenMeasured{"WAV", "MP3", "IMY", "MID", "MIDI", "MI"};
    return info.kind == QLatin1String("AMR") ||
           (whenMeasured.contains(info.kind) && info.length > 0);
}

bool SoundIntake::convertsToAmr(const QString& path) {
    if (AppGlobals::setting("preferences", "ConvertWavToAmr", "1") != QLatin1String("1"))
        return false;
    WavHeader header;
    return header.read(path) == WavHeader::Error::None && header.isPlainPcm() &&
           header.sampleRate() == AmrConverter::kSampleRate && header.bitsPerSample() == 16 &&
           header.channels() == 1 && header.frames() > 0;
}

// A WAV is in the work folder before it is judged: as AMR when that is
// wanted, otherwise as the WAV itself, read again under its plain
// work-folder name where the user's path may have been unreadable.
QString SoundIntake::bringIn(const QString& source, Info& info, QString* why) {
    if (info.kind != QLatin1String("WAV"))
        return copyIn(source, workExtension(source, info), why);
    if (info.length > 0 && convertsToAmr(source))
        if (const QString amr = convertToAmr(source); !amr.isEmpty())
            return amr;
    const QString name = copyIn(source, QStringLiteral(".wav"), why);
    if (!name.isEmpty())
        info = measure(m_manager.GetWorkFolderPath() + name);
    return name;
}

QString SoundIntake::workExtension(const QString& fileName, const Info& info) {
    if (info.kind == QLatin1String("MIDI"))
        return QStringLiteral(".mid");
    return clsMMSManager::GetFilenameExtension(fileName);
}

// The encoder writes its target whole or not at all, so a refused WAV
// leaves nothing behind.
QString SoundIntake::convertToAmr(const QString& source) {
    const QString name = m_manager.GetUniqueFileName(QStringLiteral("A"), QStringLiteral(".amr"));
    return m_manager.WavToAmr(source, m_manager.GetWorkFolderPath() + name) == AmrConverter::Ok
               ? name
               : QString();
}

QString SoundIntake::copyIn(const QString& source, const QString& extension, QString* why) {
    const QString name = m_manager.GetUniqueFileName(QStringLiteral("A"), extension);
    return m_manager.CopyToWorkFolder(source, name, why) ? name : QString();
}

qint64 SoundIntake::lengthOf(const QString& name, const Info& info) {
    return info.length > 0 ? info.length
                           : m_manager.soundLength(m_manager.GetWorkFolderPath() + name);
}
