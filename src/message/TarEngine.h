#pragma once

#include <QString>
#include <QStringList>
#include <QtGlobal>

class TarCommandLine;
struct archive;
struct archive_entry;

// How much one archive may hold. Archives come from outside (messages
// received or downloaded), so a hostile one must not fill the disk; and what
// the program writes must stay within what it reads back, so one table serves
// packing and unpacking.
struct TarLimits {
    qint64 memberBytes = qint64(256) << 20; // one member
    qint64 totalBytes = qint64(1) << 30;    // all members together, as declared
    // Headers read, whatever their kind: room for a message of many thousand
    // slides, each with its slide file, background, sound and pictures.
    int members = 100000;
};

// The tar engine the message files go through, driven by command lines (see
// TarCommandLine for the syntax):
//   --display-dialog=0 -cvfz "ARCHIVE" "FOLDER\*.*"   gzip tar of the folder's files
//   --display-dialog=0 -fc "ARCHIVE" "FILE" ...       plain tar of the given files
//   --use-directory=0 --display-dialog=0 -xvf "ARCHIVE" -o "FOLDER"
// Members are always stored by file name only, and the archive is written to a
// temporary file beside the target that replaces it only when complete.
//
// Extraction drops folder names (a member "a/b/c.jpg" becomes FOLDER/c.jpg) and
// writes nothing but regular files directly into FOLDER, each through a
// temporary name, so a damaged archive never leaves a half member under its real
// name. Members that are links, devices, FIFOs, have absolute names, ".."
// components or names that are no file name are skipped and the rest is still
// extracted; the result is then MembersRefused and lastError() names each one.
// Folder entries are skipped silently: without folder names they carry nothing.
// A member over the size limits ends the extraction, as everything after it
// would have to be decompressed first; so does one member too many. Extraction
// that keeps folder names is not offered (the program never asks for it): a
// line without --use-directory=0 is refused.
class TarEngine {
public:
    enum Result : int {
        Success = 0,
        BadCommandLine = 1,
        NotAnArchive = 2,
        DamagedArchive = 3,
        WriteFailed = 4,
        MissingFile = 5,
        MembersRefused = 6,
        LimitExceeded = 7,
        Busy = 8,
    };

    explicit TarEngine(const TarLimits& limits = {});

    // Runs one command line in the engine's syntax. Returns 0 on success, else a
    // Result; *output receives the listing of processed members (with flag v):
    // their names as stored in the archive, each followed by "\n", the whole cut
    // to outputSize - 1 characters.
    int run(const QString& commandLine, QString* output = nullptr, int outputSize = 512);
    // True when the file is a readable tar archive (gzip-compressed or plain)
    // holding at least one member.
    bool isArchive(const QString& path) const;
    // The work is synchronous: true only inside run().
    bool isRunning() const { return m_running; }
    // The reason of the last failure ("" after success).
    QString lastError() const { return m_lastError; }

private:
    struct PackEntry {
        QString path;
        QString name;
    };

    int pack(const TarCommandLine& command);
    int collectFiles(const QStringList& patterns, QList<PackEntry>* entries);
    int checkLimits(const QList<PackEntry>& entries);
    int writeArchive(const QString& target, bool gzip, const QList<PackEntry>& entries);
    int writeMember(archive* writer, const PackEntry& entry);

    int unpack(const TarCommandLine& command);
    int extractAll(archive* reader, archive_entry* entry, int folder);
    int extractEntry(archive* reader, archive_entry* entry, int folder);
    int extractMember(archive* reader, int folder, const QString& name);
    int copyData(archive* reader, int file, const QString& name);

    void listMember(const QString& name);
    int failWith(int result, const QString& reason);

    TarLimits m_limits;
    bool m_running = false;
    bool m_listing = false;
    qsizetype m_listLimit = 0;
    QString m_listed;
    QString m_lastError;
    QStringList m_refused;
    qint64 m_declaredBytes = 0;
};
