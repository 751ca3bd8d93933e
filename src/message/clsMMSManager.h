#pragma once

#include "MmsPacker.h"
#include "PrivateTempDir.h"
#include "SmilExporter.h"
#include "SmilImporter.h"
#include "TarEngine.h"
#include "UniqueNamer.h"
#include "clsMessage.h"

#include <QHash>
#include <QImage>
#include <QObject>
#include <QString>
#include <QStringList>
#include <memory>

// The files of the message being composed: the work folder and its unique
// names, new, open and save of ".mms" files (a gzip-compressed tar of the work
// folder) and pictures written in the configured format.
class clsMMSManager : public QObject {
    Q_OBJECT
public:
    enum OpenResult { OpenOk = 0, OpenNotArchive = 2 };
    enum SpecialFolder { Documents = 5, LocalAppData = 28 };

    explicit clsMMSManager(QObject* parent = nullptr);
    ~clsMMSManager() override;

    // Sub-paths below the local application-data folder; creates both folders.
    void Initialize(const QString& workSubPath, const QString& userArchiveSubPath,
                    const QString& messageFileName);
    // Initialize with "workPath", "userArchive" and "messagefile" of section "paths".
    void InitializeFromSettings();
    // The same with folders given whole, for scripts that work elsewhere.
    void InitializeAt(const QString& workFolder, const QString& userArchive,
                      const QString& messageFileName);

    // Another work folder than the settings name: one a running copy holds alone.
    void setWorkFolder(const QString& folder);
    QString GetWorkFolderPath() const { return m_workFolder; }
    QString GetUserArchivePath() const { return m_userArchive; }
    QString messageFileName() const { return m_messageFileName; }
    QString GetSaveMessagePath(const QString& fallback = QString()) const;
    static QString GetSpecialFolderPath(int folder);
    // subFolder inside a private temporary folder of this manager's, created;
    // "" when it cannot be made. The folder goes with the manager.
    QString GetTempFolderPath(const QString& subFolder);
    static bool DeleteFolder(const QString& folder);

    // Both "/" and "\" separate folders.
    static QString GetFilenameFromPath(const QString& path, bool keepExtension);
    // The separator is kept only for a positive flag; a true stored as -1 drops it.
    static QString GetPathFromFilename(const QString& path, int keepSeparator);
    static QString GetFilenameExtension(const QString& fileName);
    static QString ReplaceFilenameExtension(const QString& fileName, const QString& extension);

    QString GetUniqueFileName(const QString& prefix, const QString& fileName);
    // The new name, or "" when the file could not be copied: the window must
    // not put a name in the message that its work folder lacks.
    QString SaveFileToWorkFolder(const QString& prefix, const QString& source,
                                 const QString& extension);
    // Copies the file at source into the work folder as name.
    bool CopyToWorkFolder(const QString& source, const QString& name, QString* why = nullptr);
    void DeleteWorkFolderFile(const QString& fileName);
    // Throws AppError when the picture cannot be written.
    void SavePictureBoxImage(const QImage& picture, int format, const QString& path);

    clsMessage* CreateMsg();
    // A binary MMS under any name is imported (ImportBinary) instead; its
    // notes are exportImportNotes().
    clsMessage* OpenMsg(const QString& path, int& result);
    bool SaveMsg(const QString& path);
    // Takes the message XML lying in folder, and the media it names, into the
    // work folder as the current message; folder itself is only read. Its
    // slide pictures are rendered anew on save. nullptr, with lastError(), when
    // folder holds no readable message XML.
    clsMessage* AdoptFolderMessage(const QString& folder);
    // The message the work folder already holds, left there by a copy of the
    // program that did not end, becomes the current one under name, changed.
    // nullptr, with lastError(), when the folder holds no readable message.
    clsMessage* ReopenWorkFolder(const QString& name);

    enum ExportKind { ExportSmil = 1, ExportTemplate = 2, ExportPackage = 4 };
    enum ExportResult { ExportOk = 0, ExportFailed = 1, ExportExists = 2 };
    enum ImportKind { ImportSmil = 1, ImportTemplate = 2, ImportBinary = 3 };

    // Writes the message as a SMIL set beside target (FOLDER/NAME.smil), and
    // for a template also FOLDER/mms.tpl, for a package FOLDER/mms.pkg and
    // FOLDER/mms.SIS. Never overwrites without leave.
    int ExportMMS(clsMessage& message, int kind, int durationFormat, const QString& target,
                  bool overwrite);
    // A new message named "import" from a SMIL file or a template archive,
    // or named by its Subject from a binary MMS; nullptr, with the status
    // saying why, when it cannot be read.
    clsMessage* ImportMMS(const QString& path, int kind);
    // What the file at path is to ImportMMS: a binary MMS by its bytes, a
    // template by its extension ".tpl", else a SMIL file.
    static int ImportKindOf(const QString& path);
    QString GetExportImportStatus() const { return m_exportStatus; }
    // What the last import or export took otherwise than it was written (a
    // slide whose duration reads as 0 ms, a slide left out), one line each.
    QStringList exportImportNotes() const { return m_notes; }
    // The files each slide went out as in the last successful export.
    QList<SmilExporter::SlideFiles> exportedSlides() const { return m_exportedSlides; }
    // The exported SMIL set of folder as a binary MMS, folder + baseName + ".wap".
    bool SaveAsMMS(const QString& folder, const QString& baseName, const QString& fileList,
                   const QString& messageName,
                   MmsPacker::MessageType type = MmsPacker::MessageType::SendRequest);
    bool GetSaveAsMMSStatus() const { return m_saveAsMmsOk; }
    // 0 after success, kSaveAsMmsFailed after a failure, with the text saying why.
    int saveAsMmsCode() const { return m_saveAsMmsCode; }
    QString saveAsMmsStatus() const { return m_saveAsMmsStatus; }
    static constexpr int kSaveAsMmsFailed = 6;
    // The files of an exported set's list that go into a template or package.
    static QStringList packagedNames(const QString& fileList);
    void SetTemplateFileType() { m_templateFileType = true; }
    void ClearTemplateFileType() { m_templateFileType = false; }
    int WavToAmr(const QString& source, const QString& target);
    int AmrToWav(const QString& source, const QString& target);
    // A sound's length in milliseconds; 0 when it cannot be measured.
    qint64 soundLength(const QString& path);

    clsMessage* message() const { return m_message.get(); }
    // Whether the opened message is of the version this program writes.
    bool isCurrentMessage() const { return m_current; }
    // Media the last OpenMsg or AdoptFolderMessage found missing or refused
    // (a name that is no plain file name, a link), each saying why; their
    // slides were left without them.
    QStringList missingMedia() const { return m_missingMedia; }
    // Why the last open or save failed.
    QString lastError() const { return m_lastError; }

    // How slide pictures are rendered when a message is saved.
    void setSlideRenderer(clsMessage::SlideRenderer renderer);
    // A renderer for this work folder at the surface size of the settings.
    clsMessage::SlideRenderer defaultSlideRenderer() const;

signals:
    void ProsessingSlide(int slide, int count);

private:
    void emptyWorkFolder();
    // The message XML of the work folder as the current message.
    void takeWorkFolderXml(const QString& name);
    bool runTar(const QString& commandLine);
    std::unique_ptr<clsMessage> newMessage(const QString& xmlPath, const QString& name);
    void applyDefaults(clsMessage& message) const;
    void loadSlidePictures(clsMessage& message);
    // reasons: why a name is gone, where that is known better than "missing".
    void dropMissingMedia(clsMessage& message, const QHash<QString, QString>& reasons = {});
    bool packTemplate(const QString& folder, const QString& baseName, const QString& fileList);
    bool buildPackage(const QString& folder, const QString& baseName, const QString& fileList);
    QString runPackageBuilder(const QString& definition);
    bool unpackTemplate(const QString& archive, const QString& folder);
    static QString templatePresentation(const QString& folder);
    clsMessage* importSmil(const QString& smil, const QString& textsIndex);
    QString importFolder(const QString& subFolder);
    clsMessage* importBinary(const QString& path, const QString& name);
    clsMessage* buildImported(const SmilImporter& importer);
    // Work-folder names of the files an import copied in, by source path.
    struct ImportedFiles {
        QHash<QString, QString> names;
        QHash<QString, qint64> soundLengths;
    };
    bool fillImportedSlide(clsSlide& slide, const SmilImporter::Slide& imported,
                           ImportedFiles& copies);
    QString copyOnce(const QString& prefix, const QString& source, ImportedFiles& copies);
    QString copyIntoWorkFolder(const QString& prefix, const QString& source);
    int exportFailed(const QString& status);

    std::unique_ptr<PrivateTempDir> m_temp;
    QString m_workFolder;
    QString m_userArchive;
    QString m_messageFileName;
    UniqueNamer m_namer;
    TarEngine m_tar;
    std::unique_ptr<clsMessage> m_message;
    clsMessage::SlideRenderer m_renderer;
    bool m_current = false;
    QStringList m_missingMedia;
    QString m_lastError;
    QString m_exportStatus;
    QStringList m_notes;
    QList<SmilExporter::SlideFiles> m_exportedSlides;
    bool m_templateFileType = false;
    bool m_saveAsMmsOk = false;
    int m_saveAsMmsCode = 0;
    QString m_saveAsMmsStatus;
};
