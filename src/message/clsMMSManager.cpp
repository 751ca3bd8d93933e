#include "clsMMSManager.h"

#include "AmrConverter.h"
#include "AppError.h"
#include "AppGlobals.h"
#include "AppPaths.h"
#include "AtomicFile.h"
#include "EventPump.h"
#include "ImageWriter.h"
#include "MmsImporter.h"
#include "PackageDefinition.h"
#include "PictureFile.h"
#include "PlainFileName.h"
#include "PrivateTempDir.h"
#include "SlideRenderer.h"
#include "SmilExporter.h"
#include "clsPropertiesXML.h"
#include "clsRunPgm.h"
#include "modPlaySound.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QScopeGuard>
#include <QThread>

namespace {
const QChar kQuote = QLatin1Char('"');
constexpr std::int16_t kMinimizedNoActivate = 7;
constexpr int kPackageBuilderTimeoutMs = 120000;
constexpr int kPollIntervalMs = 10;
// The template and package steps always name their files after "mms".
const QString kPackageBaseName = QStringLiteral("mms");

QString quoted(const QString& text) {
    return kQuote + text + kQuote;
}

qsizetype lastSeparator(const QString& path) {
    return std::max(path.lastIndexOf(QLatin1Char('\\')), path.lastIndexOf(QLatin1Char('/')));
}

QString withoutTrailingSlash(QString folder) {
    while (folder.size() > 1 && folder.endsWith(QLatin1Char('/')))
        folder.chop(1);
    return folder;
}
} // namespace

clsMMSManager::clsMMSManager(QObject* parent) : QObject(parent) {}

clsMMSManager::~clsMMSManager() = default;

void clsMMSManager::Initialize(const QString& workSubPath, const QString& userArchiveSubPath,
                               const QString& messageFileName) {
    InitializeAt(AppPaths::localAppDataFolder() + workSubPath,
                 AppPaths::localAppDataFolder() + userArchiveSubPath, messageFileName);
}

void clsMMSManager::InitializeAt(const QString& workFolder, const QString& userArchive,
                                 const QString& messageFileName) {
    m_workFolder = AppPaths::withSlash(workFolder);
    m_userArchive = AppPaths::withSlash(userArchive);
    m_messageFileName = messageFileName;
    AppPaths::createPath(m_workFolder);
    AppPaths::createPath(m_userArchive);
    m_renderer = defaultSlideRenderer();
}

void clsMMSManager::setWorkFolder(const QString& folder) {
    m_workFolder = AppPaths::withSlash(folder);
    AppPaths::createPath(m_workFolder);
}

void clsMMSManager::InitializeFromSettings() {
    Initialize(AppGlobals::setting("paths", "workPath", "Vellumo\\work\\"),
               AppGlobals::setting("paths", "userArchive", "Vellumo\\archive\\"),
               AppGlobals::setting("paths", "messagefile", "message.xml"));
}

QString clsMMSManager::GetSaveMessagePath(const QString& fallback) const {
    const QString saved = AppGlobals::setting("preferences", "SaveMessagePath", "");
    if (!saved.isEmpty())
        return AppPaths::withSlash(saved);
    const QString documents = GetSpecialFolderPath(Documents);
    return documents.isEmpty() ? fallback : documents;
}

QString clsMMSManager::GetSpecialFolderPath(int folder) {
    switch (folder) {
    case Documents:
        return AppPaths::documentsFolder();
    case LocalAppData:
        return AppPaths::localAppDataFolder();
    default:
        return QString();
    }
}

// Inside a private folder of this manager's own: a fixed name in the shared
// temporary folder could be planted (a link to the user's files) or shared by
// two imports at once.
QString clsMMSManager::GetTempFolderPath(const QString& subFolder) {
    if (!m_temp)
        m_temp = std::make_unique<PrivateTempDir>();
    return m_temp->subFolder(subFolder);
}

bool clsMMSManager::DeleteFolder(const QString& folder) {
    return QDir(AppPaths::toDisk(folder)).removeRecursively();
}

QString clsMMSManager::GetFilenameFromPath(const QString& path, bool keepExtension) {
    QString name = path.mid(lastSeparator(path) + 1);
    if (!keepExtension && name.contains(QLatin1Char('.')))
        name.truncate(name.lastIndexOf(QLatin1Char('.')));
    return name;
}

QString clsMMSManager::GetPathFromFilename(const QString& path, int keepSeparator) {
    const qsizetype separator = lastSeparator(path);
    if (separator < 0)
        return QString();
    return path.left(keepSeparator > 0 ? separator + 1 : separator);
}

QString clsMMSManager::GetFilenameExtension(const QString& fileName) {
    return AppPaths::extensionOf(fileName);
}

QString clsMMSManager::ReplaceFilenameExtension(const QString& fileName, const QString& extension) {
    const qsizetype dot = fileName.lastIndexOf(QLatin1Char('.'));
    return dot < 0 ? extension : fileName.left(dot + 1) + extension;
}

// A file already there may be named by an undo step, by the file being
// taken in itself, or (after the tick counter started again) by an earlier
// one, so it is never written over.
QString clsMMSManager::GetUniqueFileName(const QString& prefix, const QString& fileName) {
    const QString extension = GetFilenameExtension(fileName).toLower();
    QString name;
    do
        name = m_namer.next(prefix, extension);
    while (!m_workFolder.isEmpty() && QFileInfo::exists(m_workFolder + name));
    return name;
}

QString clsMMSManager::SaveFileToWorkFolder(const QString& prefix, const QString& source,
                                            const QString& extension) {
    const QString name = UniqueNamer::immediate(
        prefix, extension.isEmpty() ? GetFilenameExtension(source) : extension);
    return CopyToWorkFolder(AppPaths::toDisk(source), name) ? name : QString();
}

// A message that names a file its work folder lacks would be saved without
// it, so a copy that fails (a full disk, a file size limit) is reported.
bool clsMMSManager::CopyToWorkFolder(const QString& source, const QString& name, QString* why) {
    QFile from(source);
    if (from.open(QIODevice::ReadOnly))
        return AtomicFile::copyFile(from, m_workFolder + name, why);
    if (why)
        *why = from.errorString();
    return false;
}

void clsMMSManager::DeleteWorkFolderFile(const QString& fileName) {
    if (PlainFileName::isPlain(fileName))
        QFile::remove(m_workFolder + fileName);
}

void clsMMSManager::SavePictureBoxImage(const QImage& picture, int format, const QString& path) {
    ImageWriter::write(picture, format, AppPaths::toDisk(path), ImageWriter::currentSettings());
}

clsMessage* clsMMSManager::CreateMsg() {
    emptyWorkFolder();
    m_message = newMessage(QString(), QString());
    applyDefaults(*m_message);
    m_current = true;
    m_missingMedia.clear();
    return m_message.get();
}

clsMessage* clsMMSManager::OpenMsg(const QString& path, int& result) {
    m_missingMedia.clear();
    m_lastError.clear();
    m_notes.clear();
    const QString archive = AppPaths::toDisk(path);
    // A message as it is sent: imported, the open message kept when it cannot be.
    if (MmsImporter::isBinaryMms(archive)) {
        clsMessage* message = importBinary(archive, GetFilenameFromPath(path, false));
        m_lastError = message ? QString() : m_exportStatus;
        result = message ? OpenOk : OpenNotArchive;
        if (message)
            message->setChanged(false);
        return message;
    }
    emptyWorkFolder();
    if (!m_tar.isArchive(archive) ||
        !runTar("--use-directory=0 --display-dialog=0 -xvf " + quoted(archive) + " -o  " +
                quoted(withoutTrailingSlash(m_workFolder)))) {
        if (m_lastError.isEmpty())
            m_lastError = archive + " is not a message file.";
        // Nothing half-unpacked stays behind.
        emptyWorkFolder();
        result = OpenNotArchive;
        return nullptr;
    }
    // The message going out lives until its successor is whole: the window
    // may paint it while the slides come in.
    const std::unique_ptr<clsMessage> previous = std::move(m_message);
    takeWorkFolderXml(GetFilenameFromPath(path, false));
    m_message->setChanged(false);
    result = OpenOk;
    return m_message.get();
}

clsMessage* clsMMSManager::ReopenWorkFolder(const QString& name) {
    m_missingMedia.clear();
    m_lastError.clear();
    const std::unique_ptr<clsMessage> previous = std::move(m_message);
    takeWorkFolderXml(name);
    if (!m_message->wasLoaded()) {
        m_lastError = m_messageFileName + " in " + m_workFolder + " is not a readable message XML";
        m_message.reset();
        return nullptr;
    }
    m_message->setChanged(true);
    return m_message.get();
}

void clsMMSManager::takeWorkFolderXml(const QString& name) {
    m_message = newMessage(m_workFolder + m_messageFileName, name);
    m_current = m_message->version() == QLatin1String("2.0");
    if (m_current) {
        applyDefaults(*m_message);
        dropMissingMedia(*m_message);
        loadSlidePictures(*m_message);
    }
}

bool clsMMSManager::SaveMsg(const QString& path) {
    m_lastError.clear();
    if (!m_message) {
        m_lastError = QStringLiteral("There is no message to save.");
        return false;
    }
    if (!m_message->SaveMessage(m_workFolder + m_messageFileName)) {
        m_lastError = m_message->lastError();
        return false;
    }
    // The engine writes beside the target and renames, so the old file
    // survives any failure.
    if (!runTar("--display-dialog=0 -cvfz " + quoted(AppPaths::toDisk(path)) + " " +
                quoted(withoutTrailingSlash(m_workFolder) + "\\*.*")))
        return false;
    m_message->setChanged(false);
    return true;
}

clsMessage* clsMMSManager::AdoptFolderMessage(const QString& folder) {
    m_missingMedia.clear();
    m_lastError.clear();
    m_message.reset();
    emptyWorkFolder();
    const QString xml = m_workFolder + m_messageFileName;
    auto message = std::unique_ptr<clsMessage>();
    if (PlainFileName::copy(folder, m_messageFileName, xml, &m_lastError)) {
        message = newMessage(xml, QString());
        if (!message->wasLoaded())
            m_lastError = m_messageFileName + " in " + folder + " is not a readable message XML";
    }
    if (!m_lastError.isEmpty()) {
        emptyWorkFolder();
        return nullptr;
    }
    // Only the files the message names come along; one that cannot is left out
    // with the reason.
    QHash<QString, QString> notBrought;
    for (const QString& name : message->MediaNames()) {
        QString why;
        if (!PlainFileName::copy(folder, name, m_workFolder + name, &why))
            notBrought.insert(name, why);
    }
    m_message = std::move(message);
    m_current = m_message->version() == QLatin1String("2.0");
    applyDefaults(*m_message);
    dropMissingMedia(*m_message, notBrought);
    return m_message.get();
}

void clsMMSManager::setSlideRenderer(clsMessage::SlideRenderer renderer) {
    m_renderer = std::move(renderer);
}

clsMessage::SlideRenderer clsMMSManager::defaultSlideRenderer() const {
    return [folder = m_workFolder](const clsSlide& slide, const QString& path) {
        return SlideRenderer(folder, SlideRenderer::surfaceFromSettings())
            .renderToFile(slide, path);
    };
}

void clsMMSManager::emptyWorkFolder() {
    QDir folder(m_workFolder);
    for (const QString& name : folder.entryList(QDir::Files | QDir::Hidden | QDir::System))
        folder.remove(name);
}

bool clsMMSManager::runTar(const QString& commandLine) {
    QString output;
    if (m_tar.run(commandLine, &output) == 0)
        return true;
    m_lastError = m_tar.lastError();
    return false;
}

std::unique_ptr<clsMessage> clsMMSManager::newMessage(const QString& xmlPath, const QString& name) {
    auto message = std::make_unique<clsMessage>();
    message->Initialize(xmlPath, name, m_workFolder);
    // Progress for each slide as it is rendered into the message file.
    const clsMessage* self = message.get();
    message->setSlideRenderer([this, self](const clsSlide& slide, const QString& target) {
        emit ProsessingSlide(slide.index(), self->Slides().Count());
        return m_renderer && m_renderer(slide, target);
    });
    return message;
}

void clsMMSManager::applyDefaults(clsMessage& message) const {
    message.setDefaultDuration(
        AppGlobals::setting("preferences", "SlideDuration", "3000").toLongLong());
    message.setDefaultColor(
        AppGlobals::setting("preferences", "BackgroundColor", "0").toLongLong());
}

void clsMMSManager::loadSlidePictures(clsMessage& message) {
    const int count = message.Slides().Count();
    for (const auto& slide : message.Slides()) {
        emit ProsessingSlide(slide->index(), count);
        if (slide->DrawObjects().BackType() == clsDrawObjects::BackAnimated)
            continue;
        // A missing or unreadable slide file leaves the slide with an empty picture.
        try {
            slide->setImage(PictureFile::load(m_workFolder + slide->SlideFileName()));
        } catch (const AppError&) {
            slide->setImage(QImage());
        }
    }
}

void clsMMSManager::dropMissingMedia(clsMessage& message, const QHash<QString, QString>& reasons) {
    // Names come from the file: each is checked before it is taken as a path.
    auto missing = [this, &reasons](const QString& name) {
        QString why;
        const bool gone =
            !name.isEmpty() && PlainFileName::existingFile(m_workFolder, name, &why).isEmpty();
        if (gone)
            m_missingMedia << reasons.value(name, why);
        return gone;
    };
    for (const auto& slide : message.Slides()) {
        if (missing(slide->Sound())) {
            slide->setSound(QString());
            slide->setSoundName(QString());
            slide->setSoundDuration(0);
        }
        clsDrawObjects& objects = slide->DrawObjects();
        if (missing(objects.BackPicture())) {
            objects.setBackPicture(QString());
            objects.setBackType(clsDrawObjects::BackColorOnly);
        }
        for (int i = objects.Count(); i >= 1; --i)
            if (objects.Item(i).typ() == QLatin1String("image") && missing(objects.Item(i).image()))
                objects.Remove(i);
    }
}

int clsMMSManager::ExportMMS(clsMessage& message, int kind, int durationFormat,
                             const QString& target, bool overwrite) {
    m_notes.clear();
    m_exportedSlides.clear();
    ClearTemplateFileType();
    if (kind == ExportTemplate || kind == ExportPackage)
        SetTemplateFileType();
    const QString folder = GetPathFromFilename(AppPaths::toDisk(target), 1);
    const QString baseName = GetFilenameFromPath(target, false);
    const QString output = kind == ExportTemplate  ? folder + kPackageBaseName + ".tpl"
                           : kind == ExportPackage ? folder + kPackageBaseName + ".SIS"
                                                   : AppPaths::toDisk(target);
    if (!overwrite && QFileInfo::exists(output)) {
        m_exportStatus =
            AppGlobals::text("STR_EXPORT_TARGET_EXISTS", "The file %0 already exists.", {output});
        return ExportExists;
    }
    if (kind != ExportSmil && kind != ExportTemplate && kind != ExportPackage)
        return exportFailed("Unknown export kind " + QString::number(kind));
    SmilExporter exporter(folder, baseName, m_templateFileType, durationFormat);
    if (!exporter.run(message,
                      [this](int slide, int count) { emit ProsessingSlide(slide, count); }))
        return exportFailed(exporter.status());
    m_exportedSlides = exporter.slideFiles();
    if (!exporter.skippedSlides().isEmpty())
        m_notes << AppGlobals::text("STR_EXPORT_SKIPPED_SLIDES",
                                    "Left out for lasting less than 1 ms: slide %0.",
                                    {exporter.skippedSlides().join(QLatin1String(", "))});
    if (kind == ExportTemplate && !packTemplate(folder, kPackageBaseName, message.MMSFileList()))
        return ExportFailed;
    if (kind == ExportPackage && !buildPackage(folder, kPackageBaseName, message.MMSFileList()))
        return ExportFailed;
    m_exportStatus = QStringLiteral("OK");
    return ExportOk;
}

bool clsMMSManager::SaveAsMMS(const QString& folder, const QString& baseName,
                              const QString& fileList, const QString& messageName,
                              MmsPacker::MessageType type) {
    MmsPacker packer;
    packer.setMessageType(type);
    QStringList table;
    clsPropertiesXML* settings = AppGlobals::settings();
    if (settings)
        settings->GetPropList("MimeTypes", table, "=");
    for (const QString& entry : table)
        packer._RegisterMimeType(entry.section(QLatin1Char('='), 0, 0),
                                 entry.section(QLatin1Char('='), 1), 0);
    const int result =
        packer._Pack(AppPaths::toDisk(folder), baseName + ".wap", fileList, messageName);
    m_saveAsMmsOk = result <= 0;
    m_saveAsMmsCode = m_saveAsMmsOk ? 0 : kSaveAsMmsFailed;
    m_saveAsMmsStatus =
        m_saveAsMmsOk ? QStringLiteral("OK")
                      : AppGlobals::text("STR_ERROR_TAR_PACK", "The files could not be packed") +
                            " (WAP " + QString::number(result) + ") " + packer.lastError();
    return m_saveAsMmsOk;
}

int clsMMSManager::exportFailed(const QString& status) {
    m_exportStatus = status;
    return ExportFailed;
}

// The files of an exported set that go into a package: texts travel in the
// texts index, and only plain names of the set's own folder are taken.
QStringList clsMMSManager::packagedNames(const QString& fileList) {
    QStringList names;
    for (const QString& name : fileList.split(QLatin1Char(';'), Qt::SkipEmptyParts))
        if (!name.contains(QLatin1String(".txt")) && PlainFileName::isPlain(name))
            names << name;
    return names;
}

bool clsMMSManager::packTemplate(const QString& folder, const QString& baseName,
                                 const QString& fileList) {
    QString command =
        "--use-directory=0 --display-dialog=0 -fc " + quoted(folder + baseName + ".tpl");
    for (const QString& name : packagedNames(fileList))
        command += " " + quoted(folder + name);
    if (runTar(command))
        return true;
    exportFailed(AppGlobals::text("STR_ERROR_TAR_PACK", "The files could not be packed") + " (" +
                 m_lastError + ")");
    return false;
}

bool clsMMSManager::buildPackage(const QString& folder, const QString& baseName,
                                 const QString& fileList) {
    const QString definition = folder + baseName + ".pkg";
    const QString package = folder + baseName + ".SIS";
    if (!PackageDefinition::write(
            definition, PackageDefinition::lines(baseName, folder, packagedNames(fileList)))) {
        exportFailed("The package definition cannot be written: " + definition);
        return false;
    }
    // A package left from an earlier export must not pass for this one's.
    QFile::remove(package);
    const QString failure = runPackageBuilder(definition);
    if (failure.isEmpty() && QFileInfo::exists(package))
        return true;
    exportFailed(
        AppGlobals::text("STR_ERROR_SIS_BUILD", "The installation package cannot be built.") + " " +
        (failure.isEmpty() ? package + " was not written." : failure));
    return false;
}

// Runs the package builder (beside the program in the build tree, in the
// tool folder when installed) and waits for it, letting the window work
// meanwhile; "" when it ended well, else why not.
QString clsMMSManager::runPackageBuilder(const QString& definition) {
    const QString folder = AppPaths::toolFolder(QStringLiteral("makesis"));
    clsRunPgm builder;
    if (!builder.run(folder, "makesis " + quoted(definition), kMinimizedNoActivate))
        return "The package builder cannot be started: " + folder + "makesis";
    const QDeadlineTimer deadline(kPackageBuilderTimeoutMs);
    while (builder.isActive()) {
        if (deadline.hasExpired()) {
            builder.terminate();
            return QStringLiteral("The package builder did not finish in time.");
        }
        pumpEvents();
        QThread::msleep(kPollIntervalMs);
    }
    if (builder.GetExitCode() != 0)
        return "The package builder failed with exit code " +
               QString::number(builder.GetExitCode()) + ".";
    return QString();
}

clsMessage* clsMMSManager::ImportMMS(const QString& path, int kind) {
    m_exportStatus.clear();
    m_notes.clear();
    const QString smil = AppPaths::toDisk(path);
    if (kind == ImportBinary)
        return importBinary(smil, QStringLiteral("import"));
    if (kind == ImportTemplate) {
        const QString folder = importFolder("tpldir");
        if (folder.isEmpty())
            return nullptr;
        // The unpacked media are copied into the work folder; nothing stays behind.
        const auto removeUnpacked = qScopeGuard([folder] { DeleteFolder(folder); });
        return unpackTemplate(smil, folder)
                   ? importSmil(templatePresentation(folder), folder + "texts.xml")
                   : nullptr;
    }
    const QString folder = GetPathFromFilename(smil, 1);
    const QString own = folder + GetFilenameFromPath(smil, false) + "_texts.xml";
    return importSmil(smil, QFileInfo::exists(own) ? own : folder + "texts.xml");
}

// A private folder for an import's files; "" with the status saying why not.
QString clsMMSManager::importFolder(const QString& subFolder) {
    const QString folder = GetTempFolderPath(subFolder);
    if (folder.isEmpty())
        m_exportStatus = "No private temporary folder can be made: " + m_temp->errorString();
    return folder;
}

int clsMMSManager::ImportKindOf(const QString& path) {
    if (MmsImporter::isBinaryMms(path))
        return ImportBinary;
    return GetFilenameExtension(path).compare(QLatin1String(".tpl"), Qt::CaseInsensitive) == 0
               ? ImportTemplate
               : ImportSmil;
}

// The parts are laid out as a presentation in a private folder and imported
// from there as a SMIL set is; the folder goes when the message is built.
clsMessage* clsMMSManager::importBinary(const QString& path, const QString& name) {
    const QString folder = importFolder("wapdir");
    if (folder.isEmpty())
        return nullptr;
    const auto removeParts = qScopeGuard([folder] { DeleteFolder(folder); });
    MmsImporter importer;
    clsMessage* message = nullptr;
    if (importer.read(path, folder))
        message = importSmil(importer.presentation(), QString());
    else
        m_exportStatus = importer.error();
    if (!message) {
        m_exportStatus = AppGlobals::text(
            "STR_IMPORT_MMS_REFUSED", "The message %0 cannot be read: %1", {path, m_exportStatus});
        return nullptr;
    }
    m_notes = importer.notes() + m_notes;
    message->setName(importer.subject().isEmpty() ? name : importer.subject());
    return message;
}

bool clsMMSManager::unpackTemplate(const QString& archive, const QString& folder) {
    const auto refuse = [this, &archive](const QString& why) {
        m_exportStatus = AppGlobals::text("STR_IMPORT_TEMPLATE_REFUSED",
                                          "The template %0 cannot be used: %1", {archive, why});
        return false;
    };
    if (!m_tar.isArchive(archive))
        return refuse(AppGlobals::text("STR_IMPORT_NOT_AN_ARCHIVE", "it is no tar archive."));
    if (!runTar("--use-directory=0 --display-dialog=0 -xvf " + quoted(archive) + " -o  " +
                quoted(withoutTrailingSlash(folder))))
        return refuse(m_lastError);
    if (templatePresentation(folder).isEmpty())
        return refuse(AppGlobals::text("STR_IMPORT_NO_PRESENTATION", "it holds no mms.smil."));
    return true;
}

// A template holds "mms.smil"; one written where letter case does not matter
// may hold "MMS.SMIL", and one made by hand its only SMIL file under another name.
QString clsMMSManager::templatePresentation(const QString& folder) {
    const QStringList presentations =
        QDir(folder).entryList({"*.smil"}, QDir::Files | QDir::Hidden);
    for (const QString& name : presentations)
        if (name.compare(QLatin1String("mms.smil"), Qt::CaseInsensitive) == 0)
            return folder + name;
    return presentations.size() == 1 ? folder + presentations.first() : QString();
}

clsMessage* clsMMSManager::importSmil(const QString& smil, const QString& textsIndex) {
    SmilImporter importer;
    if (!importer.read(smil, textsIndex)) {
        m_exportStatus = importer.error();
        return nullptr;
    }
    m_notes = importer.notes();
    return buildImported(importer);
}

// Everything was read and checked before: only now is the work folder emptied.
// A file that several slides name is copied and measured once. The message
// going out lives until the new one is whole, as on open.
clsMessage* clsMMSManager::buildImported(const SmilImporter& importer) {
    const std::unique_ptr<clsMessage> previous = std::move(m_message);
    clsMessage* message = CreateMsg();
    message->setName(QStringLiteral("import"));
    ImportedFiles copies;
    const int count = int(importer.slides().size());
    int number = 0;
    for (const SmilImporter::Slide& imported : importer.slides()) {
        emit ProsessingSlide(++number, count);
        if (!fillImportedSlide(message->Slides().Add(), imported, copies)) {
            // A copy that failed half-way (a full disk) leaves no half message behind.
            emptyWorkFolder();
            m_message.reset();
            return nullptr;
        }
    }
    m_exportStatus = QStringLiteral("OK");
    return message;
}

bool clsMMSManager::fillImportedSlide(clsSlide& slide, const SmilImporter::Slide& imported,
                                      ImportedFiles& copies) {
    slide.setDuration(imported.duration);
    slide.setText(imported.text);
    if (!imported.picture.isEmpty()) {
        const QString name = copyOnce("B", imported.picture, copies);
        if (name.isEmpty())
            return false;
        slide.DrawObjects().setBackType(clsDrawObjects::KindOfFile(name));
        slide.DrawObjects().setBackPicture(name);
    }
    if (!imported.sound.isEmpty()) {
        const QString name = copyOnce("A", imported.sound, copies);
        if (name.isEmpty())
            return false;
        slide.setSound(name);
        slide.setSoundName(GetFilenameFromPath(imported.sound, false));
        if (!copies.soundLengths.contains(name))
            copies.soundLengths.insert(name, soundLength(m_workFolder + name));
        slide.setSoundDuration(copies.soundLengths.value(name));
    }
    return true;
}

QString clsMMSManager::copyOnce(const QString& prefix, const QString& source,
                                ImportedFiles& copies) {
    QString& name = copies.names[source];
    if (name.isEmpty())
        name = copyIntoWorkFolder(prefix, source);
    return name;
}

qint64 clsMMSManager::soundLength(const QString& path) {
    QString measured = path;
    PrivateTempDir decoded;
    // No device plays AMR: it is measured, like it is played, as the WAV it decodes to.
    if (GetFilenameExtension(path).compare(".amr", Qt::CaseInsensitive) == 0) {
        measured = decoded.path() + "/sound.wav";
        if (AmrToWav(path, measured) != AmrConverter::Ok)
            return 0;
    }
    const qint64 length =
        modPlaySound::GetSoundInfo(measured).section(QLatin1Char(';'), 1, 1).toLongLong();
    return std::max<qint64>(length, 0);
}

QString clsMMSManager::copyIntoWorkFolder(const QString& prefix, const QString& source) {
    const QString name = GetUniqueFileName(prefix, source);
    const QFileInfo from(source);
    QString why;
    if (PlainFileName::copy(from.path(), from.fileName(), m_workFolder + name, &why))
        return name;
    exportFailed("The file cannot be copied into the message: " + why);
    return QString();
}

int clsMMSManager::WavToAmr(const QString& source, const QString& target) {
    return AmrConverter::wav2amr(AppPaths::toDisk(source), AppPaths::toDisk(target));
}

int clsMMSManager::AmrToWav(const QString& source, const QString& target) {
    return AmrConverter::amr2wav(AppPaths::toDisk(source), AppPaths::toDisk(target));
}
