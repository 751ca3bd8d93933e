#include "SoundAttacher.h"

#include "AmrConverter.h"
#include "AppGlobals.h"
#include "AppPaths.h"
#include "ClassGuard.h"
#include "DialogService.h"
#include "MessageDocument.h"
#include "MessageFitter.h"
#include "clsMMSManager.h"
#include "clsSlide.h"
#include "modPlaySound.h"

#include <QFile>
#include <QFileInfo>
#include <QStringList>
#include <QtEndian>
#include <algorithm>

namespace {
QString text(const char* key, const char* fallback) {
    return AppGlobals::text(key, fallback);
}
} // namespace

SoundAttacher::SoundAttacher(MessageDocument& document, QWidget* parent, ClassGuard* guard)
    : m_document(document), m_parent(parent), m_guard(guard) {}

bool SoundAttacher::attach(const QString& folder, const QString& fileName) {
    if (folder.isEmpty() || fileName.isEmpty() || m_document.currentSlide() < 1)
        return false;
    const QString source = AppPaths::withSlash(folder) + fileName;
    // A folder, a device or a pipe behind the name (or a link to one) would
    // block or fail the reading; for the user it is no sound file at all.
    if (!QFileInfo(source).isFile()) {
        reportMissing();
        return false;
    }
    SoundInfo info = readInfo(source);
    QString name = bringInWav(source, info);
    if (!understood(info) && !askToAttach(source)) {
        manager().DeleteWorkFolderFile(name);
        return false;
    }
    if (name.isEmpty())
        name = copyIn(source, workExtension(fileName, info));
    return !name.isEmpty() && admitted(name, fileName, info) &&
           store(name, clsMMSManager::GetFilenameFromPath(fileName, false), lengthOf(name, info));
}

// A sound the chosen content class refuses leaves nothing in the work folder,
// unless the user had it made to fit.
bool SoundAttacher::admitted(QString& name, const QString& fileName, SoundInfo& info) {
    if (!m_guard)
        return true;
    const QString path = workPath(name);
    const QString offer = ClassGuard::soundCanFit(path)
                              ? text("STR_CLASS_FIT_SOUND", "Convert it to AMR-NB so that it fits?")
                              : QString();
    const ClassGuard::Admission answer = m_guard->admit(path, fileName, offer);
    if (answer == ClassGuard::Admission::Admit ||
        (answer == ClassGuard::Admission::Fit && fitted(name, info)))
        return true;
    manager().DeleteWorkFolderFile(name);
    return false;
}

bool SoundAttacher::fitted(QString& name, SoundInfo& info) {
    const QString amr = manager().GetUniqueFileName(QStringLiteral("A"), QStringLiteral(".amr"));
    QString why;
    if (!MessageFitter::soundToAmr(workPath(name), workPath(amr), info.length, why)) {
        DialogService::messageBox(m_parent, why, text("APP_PRODUCTNAME", "Vellumo"),
                                  QMessageBox::Ok, QMessageBox::Warning);
        return false;
    }
    manager().DeleteWorkFolderFile(name);
    name = amr;
    return true;
}

SoundAttacher::SoundInfo SoundAttacher::readInfo(const QString& path) {
    const QStringList parts = modPlaySound::GetSoundInfo(path).split(QLatin1Char(';'));
    SoundInfo info;
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
bool SoundAttacher::cutShort(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray head = file.read(8);
    if (head.size() < 8 || !head.startsWith("RIFF"))
        return false;
    const quint32 declared = qFromLittleEndian<quint32>(head.constData() + 4);
    return declared != 0 && declared != 0xFFFFFFFFu && qint64(declared) + 8 > file.size() + 1;
}

bool SoundAttacher::convertsToAmr(const SoundInfo& info) {
    return info.kind == QLatin1String("WAV") && info.length > 0 &&
           info.samplesPerSecond == QLatin1String("8000") &&
           info.bitsPerSample == QLatin1String("16") &&
           AppGlobals::setting("preferences", "ConvertWavToAmr", "1") == QLatin1String("1");
}

// Whether the sound is of a kind phones play and was read well enough to be
// taken without asking. An AMR is measured only once it is in the work folder.
bool SoundAttacher::understood(const SoundInfo& info) {
    static const QStringList whenMeasured{"WAV", "MP3", "IMY", "MID", "MIDI", "MI"};
    return info.kind == QLatin1String("AMR") ||
           (whenMeasured.contains(info.kind) && info.length > 0);
}

QString SoundAttacher::workExtension(const QString& fileName, const SoundInfo& info) {
    if (info.kind == QLatin1String("MIDI"))
        return QStringLiteral(".mid");
    return clsMMSManager::GetFilenameExtension(fileName);
}

// A WAV is in the work folder before it is judged: as AMR when that is wanted
// and the encoder takes it, otherwise as the WAV itself, read again under its
// plain work-folder name where the user's path may have been unreadable.
QString SoundAttacher::bringInWav(const QString& source, SoundInfo& info) {
    if (info.kind != QLatin1String("WAV"))
        return QString();
    if (convertsToAmr(info)) {
        const QString amr = convertToAmr(source);
        if (!amr.isEmpty())
            return amr;
    }
    const QString name = copyIn(source, QStringLiteral(".wav"));
    if (!name.isEmpty())
        info = readInfo(workPath(name));
    return name;
}

// The encoder writes its target whole or not at all, so a refused WAV (two
// channels, say) leaves nothing behind.
QString SoundAttacher::convertToAmr(const QString& source) {
    const QString name = manager().GetUniqueFileName(QStringLiteral("A"), QStringLiteral(".amr"));
    return manager().WavToAmr(source, workPath(name)) == AmrConverter::Ok ? name : QString();
}

QString SoundAttacher::copyIn(const QString& source, const QString& extension) {
    const QString name = manager().GetUniqueFileName(QStringLiteral("A"), extension);
    return manager().CopyToWorkFolder(source, name) ? name : QString();
}

QString SoundAttacher::workPath(const QString& name) const {
    return manager().GetWorkFolderPath() + name;
}

// modPlaySound measures no AMR; the manager measures it by decoding it.
qint64 SoundAttacher::lengthOf(const QString& name, const SoundInfo& info) {
    return info.length > 0 ? info.length : manager().soundLength(workPath(name));
}

bool SoundAttacher::askToAttach(const QString& source) const {
    const QString question =
        text("STR_AUDIO_INFO4",
             "The format of this sound file is unknown, or the file cannot be read.") +
        "\n\n" + text("STR_AUDIO_INFO5", "A message with this sound may not play on every phone.") +
        "\n\n" + text("STR_AUDIO_FILE", "File: ") + source + "\n\n" +
        text("STR_ADD_AUDIO_Q", "Add this sound to the slide anyway?");
    return DialogService::messageBox(m_parent, question, text("APP_PRODUCTNAME", "Vellumo"),
                                     QMessageBox::Yes | QMessageBox::No,
                                     QMessageBox::Information) == QMessageBox::Yes;
}

void SoundAttacher::reportMissing() const {
    DialogService::messageBox(m_parent, text("STR_NO_FILE_FOUND", "The file cannot be found."),
                              text("APP_PRODUCTNAME", "Vellumo"), QMessageBox::Ok,
                              QMessageBox::Warning);
}

// An unknown length leaves the slide's time as it was; the sound's own time
// then says nothing rather than that of the sound it replaces.
bool SoundAttacher::store(const QString& name, const QString& soundName, qint64 length) {
    return m_document.editSlide("STR_AUDIO_TITLE", "Sounds", [&](clsSlide& slide) {
        slide.setSound(name);
        slide.setSoundName(soundName);
        slide.setSoundDuration(std::max<qint64>(length, 0));
        if (length > 0)
            slide.setDuration(length);
    });
}

clsMMSManager& SoundAttacher::manager() const {
    return m_document.manager();
}
