#include "MessageExport.h"

#include "AppGlobals.h"
#include "AtomicFile.h"
#include "PackageDefinition.h"
#include "clsMMSManager.h"
#include "clsMessage.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <filesystem>

namespace {
const QString kBaseName = QStringLiteral("mms");

int managerKind(MessageExport::Kind kind) {
    switch (kind) {
    case MessageExport::Template:
        return clsMMSManager::ExportTemplate;
    case MessageExport::Package:
        return clsMMSManager::ExportPackage;
    default:
        return clsMMSManager::ExportSmil;
    }
}

// Replaces target, as one step, by source of the same file system.
bool moveOver(const QString& source, const QString& target, QString* why) {
    std::error_code error;
    std::filesystem::rename(QFile::encodeName(source).toStdString(),
                            QFile::encodeName(target).toStdString(), error);
    if (error)
        *why = QString::fromStdString(error.message());
    return !error;
}
} // namespace

QString MessageExport::extension(Kind kind) {
    switch (kind) {
    case Smil:
        return QStringLiteral(".smil");
    case Template:
        return QStringLiteral(".tpl");
    case Package:
        return QStringLiteral(".SIS");
    default:
        return QStringLiteral(".wap");
    }
}

QString MessageExport::madeName(Kind kind, const QString& smilName) {
    return kind == Smil ? smilName : kBaseName + extension(kind);
}

int MessageExport::run(clsMessage& message, Kind kind, int durationFormat, const QString& output,
                       bool overwrite, Keep keep) {
    const QFileInfo target(output);
    if (!overwrite && target.exists()) {
        fail(AppGlobals::text("STR_EXPORT_TARGET_EXISTS", "The file %0 already exists.",
                              {target.absoluteFilePath()}));
        return clsMMSManager::ExportExists;
    }
    const QString folder = target.absolutePath() + u'/';
    if (!folderUsable(kind, target.absolutePath()))
        return clsMMSManager::ExportFailed;
    QTemporaryDir stage(folder + QStringLiteral(".vellumo-export-XXXXXX"));
    if (!stage.isValid()) {
        fail(AppGlobals::text(
            "STR_EXPORT_FOLDER_UNWRITABLE", "Nothing can be written into the folder %0: %1",
            {QDir::toNativeSeparators(target.absolutePath()), stage.errorString()}));
        return clsMMSManager::ExportFailed;
    }
    const QString staged = stage.path() + u'/';
    const QString smilName = kind == Smil ? target.fileName() : kBaseName + extension(Smil);
    const int result = build(message, kind, durationFormat, staged, smilName);
    if (result != clsMMSManager::ExportOk)
        return result;
    if (kind == Package && keep == WholeSet && !placeDefinition(message, staged, folder))
        return clsMMSManager::ExportFailed;
    if (!commit(staged, madeName(kind, smilName), output, kind == Smil ? WholeSet : keep))
        return clsMMSManager::ExportFailed;
    m_status = QStringLiteral("OK");
    return clsMMSManager::ExportOk;
}

int MessageExport::build(clsMessage& message, Kind kind, int durationFormat, const QString& stage,
                         const QString& smilName) {
    const int result =
        m_manager.ExportMMS(message, managerKind(kind), durationFormat, stage + smilName, true);
    if (result != clsMMSManager::ExportOk) {
        fail(m_manager.GetExportImportStatus());
        return result;
    }
    if (kind != SentMms && kind != ReceivedMms)
        return clsMMSManager::ExportOk;
    const auto type = kind == ReceivedMms ? MmsPacker::MessageType::RetrieveConfirmation
                                          : MmsPacker::MessageType::SendRequest;
    if (m_manager.SaveAsMMS(stage, kBaseName, message.MMSFileList(), message.name(), type))
        return clsMMSManager::ExportOk;
    fail(m_manager.saveAsMmsStatus());
    return m_manager.saveAsMmsCode();
}

// The program reads a backslash in a path as a folder separator, the tar
// and package command lines have no way to carry a double quote, and the
// package definition is read line by line: a folder whose name holds one of
// these is refused before anything is made, rather than failing halfway.
bool MessageExport::folderUsable(Kind kind, const QString& folder) {
    QString held;
    const bool commandLine = kind == Template || kind == Package;
    if (folder.contains(u'\\'))
        held = AppGlobals::text("STR_NAME_BACKSLASH", "a backslash (\\)");
    else if (commandLine && folder.contains(u'"'))
        held = AppGlobals::text("STR_NAME_QUOTE", "a double quote (\")");
    else if (kind == Package && (folder.contains(u'\n') || folder.contains(u'\r')))
        held = AppGlobals::text("STR_NAME_LINE_BREAK", "a line break");
    if (held.isEmpty())
        return true;
    return fail(AppGlobals::text(
        "STR_EXPORT_FOLDER_NAME",
        "Nothing can be exported into the folder %0: its name holds %1, which cannot be "
        "passed on for this kind of export. Please choose another folder.",
        {folder, held}));
}

// The package definition names where its files lie: where they will lie.
bool MessageExport::placeDefinition(const clsMessage& message, const QString& stage,
                                    const QString& folder) {
    const QString definition = stage + kBaseName + ".pkg";
    return PackageDefinition::write(
               definition,
               PackageDefinition::lines(kBaseName, folder,
                                        clsMMSManager::packagedNames(message.MMSFileList()))) ||
           fail("The package definition cannot be written: " + definition);
}

// Moves the made files into the output's folder, the output under its own
// name. A target that is no regular file is refused before anything moves; a
// link to one is replaced through. Should a move fail, those already moved
// go again, so the folder holds no set of which a part is missing.
bool MessageExport::commit(const QString& stage, const QString& made, const QString& output,
                           Keep keep) {
    const QString folder = QFileInfo(output).absolutePath() + u'/';
    const QStringList names =
        keep == WholeSet ? QDir(stage).entryList(QDir::Files) : QStringList{made};
    QStringList targets;
    for (const QString& name : names) {
        const QFileInfo target(folder + (name == made ? QFileInfo(output).fileName() : name));
        const QString refusal = AtomicFile::targetRefusal(target.filePath());
        if (!refusal.isEmpty())
            return notWritten(target.filePath(), refusal);
        targets << (target.isSymLink() && target.exists() ? target.canonicalFilePath()
                                                          : target.filePath());
    }
    QString why;
    for (qsizetype i = 0; i < names.size(); ++i) {
        if (!moveOver(stage + names[i], targets[i], &why)) {
            for (qsizetype done = 0; done < i; ++done)
                QFile::remove(targets[done]);
            return notWritten(targets[i], why);
        }
    }
    return true;
}

bool MessageExport::notWritten(const QString& path, const QString& why) {
    return fail(AppGlobals::text("STR_EXPORT_NOT_WRITTEN", "The file %0 cannot be written: %1",
                                 {QDir::toNativeSeparators(path), why}));
}

bool MessageExport::fail(const QString& status) {
    m_status = status;
    return false;
}
