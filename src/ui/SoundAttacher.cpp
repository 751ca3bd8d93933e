#include "SoundAttacher.h"

#include "AppGlobals.h"
#include "AppPaths.h"
#include "ClassGuard.h"
#include "DialogService.h"
#include "MessageDocument.h"
#include "MessageFitter.h"
#include "SoundIntake.h"
#include "clsMMSManager.h"
#include "clsSlide.h"

#include <QFile>
#include <QFileInfo>
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
    SoundIntake intake(manager());
    SoundIntake::Info info = SoundIntake::measure(source);
    QString name = intake.bringIn(source, info);
    if (name.isEmpty())
        return false;
    if (!SoundIntake::understood(info) && !askToAttach(source)) {
        manager().DeleteWorkFolderFile(name);
        return false;
    }
    return admitted(name, fileName, info) &&
           store(name, clsMMSManager::GetFilenameFromPath(fileName, false),
                 intake.lengthOf(name, info));
}

// A sound the chosen content class refuses leaves nothing in the work folder,
// unless the user had it made to fit.
bool SoundAttacher::admitted(QString& name, const QString& fileName, SoundIntake::Info& info) {
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

bool SoundAttacher::fitted(QString& name, SoundIntake::Info& info) {
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

QString SoundAttacher::workPath(const QString& name) const {
    return manager().GetWorkFolderPath() + name;
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
