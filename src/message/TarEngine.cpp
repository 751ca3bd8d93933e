#include "TarEngine.h"

#include "AtomicFile.h"
#include "TarCommandLine.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <algorithm>
#include <archive.h>
#include <archive_entry.h>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <memory>
#include <unistd.h>
#include <vector>

namespace {
struct ReaderFree {
    void operator()(archive* a) const { archive_read_free(a); }
};
struct WriterFree {
    void operator()(archive* a) const { archive_write_free(a); }
};
struct EntryFree {
    void operator()(archive_entry* e) const { archive_entry_free(e); }
};
using Reader = std::unique_ptr<archive, ReaderFree>;
using Writer = std::unique_ptr<archive, WriterFree>;
using Entry = std::unique_ptr<archive_entry, EntryFree>;

class FileDescriptor {
public:
    explicit FileDescriptor(int fd) : m_fd(fd) {}
    ~FileDescriptor() {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    int get() const { return m_fd; }

private:
    int m_fd;
};

constexpr qsizetype copyBlock = 64 * 1024;
constexpr qsizetype shownNameLength = 200;
constexpr int temporaryNameTries = 16;

QString archiveError(archive* a) {
    const char* text = archive_error_string(a);
    return text && *text ? QString::fromLocal8Bit(text) : QStringLiteral("unknown archive error");
}

QString systemError() {
    return QString::fromLocal8Bit(std::strerror(errno));
}

// Names in messages stay readable however long the archive made them.
QString shown(const QString& name) {
    if (name.size() <= shownNameLength)
        return u'"' + name + u'"';
    return u'"' + name.left(shownNameLength) + QStringLiteral("...\"");
}

// A reader for tar in its variants, plain or gzip-compressed, and nothing else:
// the message files are never zip or cpio, and every extra format is more
// parser to attack.
Reader openReader(const QString& path, QString* error) {
    if (!QFileInfo(path).isFile()) {
        *error = QStringLiteral("%1 is not a file").arg(path);
        return {};
    }
    Reader reader(archive_read_new());
    archive_read_support_filter_gzip(reader.get());
    archive_read_support_format_tar(reader.get());
    if (archive_read_open_filename(reader.get(), QFile::encodeName(path).constData(), copyBlock) !=
        ARCHIVE_OK) {
        *error = archiveError(reader.get());
        return {};
    }
    return reader;
}

bool headerRead(int status) {
    return status == ARCHIVE_OK || status == ARCHIVE_WARN;
}

QString memberName(archive_entry* entry) {
    QString name;
    if (const char* utf8 = archive_entry_pathname_utf8(entry))
        name = QString::fromUtf8(utf8);
    else if (const char* raw = archive_entry_pathname(entry))
        name = QFile::decodeName(raw);
    // Archives made on systems with "\" as separator keep it in their names.
    return name.replace(u'\\', u'/');
}

QString kindRefusal(archive_entry* entry) {
    if (archive_entry_hardlink(entry))
        return QStringLiteral("hard link");
    switch (archive_entry_filetype(entry)) {
    case AE_IFREG:
        return {};
    case AE_IFLNK:
        return QStringLiteral("symbolic link");
    case AE_IFCHR:
    case AE_IFBLK:
        return QStringLiteral("device");
    case AE_IFIFO:
        return QStringLiteral("FIFO");
    default:
        return QStringLiteral("not a regular file");
    }
}

QString nameRefusal(const QString& name) {
    if (name.isEmpty())
        return QStringLiteral("empty name");
    const bool driveLetter =
        name.size() > 2 && name.at(0).isLetter() && name.at(1) == u':' && name.at(2) == u'/';
    if (name.startsWith(u'/') || driveLetter)
        return QStringLiteral("absolute name");
    const QStringList parts = name.split(u'/');
    if (parts.contains(QStringLiteral("..")))
        return QStringLiteral("name leads out of the folder");
    if (parts.last().isEmpty() || parts.last() == u'.')
        return QStringLiteral("not a file name");
    return {};
}

QByteArray temporaryName() {
    return ".unpack-" + QByteArray::number(QRandomGenerator::global()->generate64(), 16) + ".part";
}

bool writeAll(int fd, const char* data, qsizetype size) {
    while (size > 0) {
        const ssize_t written = ::write(fd, data, size_t(size));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        data += written;
        size -= written;
    }
    return true;
}

la_ssize_t writeToSaveFile(archive*, void* file, const void* buffer, size_t length) {
    const qint64 written =
        static_cast<QSaveFile*>(file)->write(static_cast<const char*>(buffer), qint64(length));
    return written == qint64(length) ? la_ssize_t(written) : -1;
}
} // namespace

TarEngine::TarEngine(const TarLimits& limits) : m_limits(limits) {}

int TarEngine::run(const QString& commandLine, QString* output, int outputSize) {
    if (m_running)
        return failWith(Busy, QStringLiteral("another operation is running"));
    m_running = true;
    m_lastError.clear();
    m_listed.clear();
    m_refused.clear();
    m_declaredBytes = 0;
    m_listLimit = std::max(outputSize - 1, 0);

    const TarCommandLine command(commandLine);
    m_listing = command.listsMembers();
    int result = BadCommandLine;
    if (!command.isValid())
        result = failWith(BadCommandLine, command.error());
    else if (command.operation() == TarCommandLine::Operation::Create)
        result = pack(command);
    else
        result = unpack(command);

    if (output)
        *output = m_listed.left(m_listLimit);
    m_running = false;
    return result;
}

bool TarEngine::isArchive(const QString& path) const {
    QString error;
    const Reader reader = openReader(path, &error);
    archive_entry* entry = nullptr;
    return reader && headerRead(archive_read_next_header(reader.get(), &entry));
}

int TarEngine::pack(const TarCommandLine& command) {
    QList<PackEntry> entries;
    const int collected = collectFiles(command.files(), &entries);
    if (collected != Success)
        return collected;
    const int fits = checkLimits(entries);
    if (fits != Success)
        return fits;
    return writeArchive(command.archive(), command.compresses(), entries);
}

// An archive this engine would refuse to unpack is not written in the first
// place: the same limits hold on both sides, checked before the target is touched.
int TarEngine::checkLimits(const QList<PackEntry>& entries) {
    if (entries.size() > m_limits.members)
        return failWith(LimitExceeded, QStringLiteral("%1 files are too many: a message file "
                                                      "holds at most %2 files")
                                           .arg(entries.size())
                                           .arg(m_limits.members));
    qint64 total = 0;
    for (const PackEntry& entry : entries) {
        const qint64 size = QFileInfo(entry.path).size();
        if (size > m_limits.memberBytes)
            return failWith(LimitExceeded,
                            QStringLiteral("%1 has %2 bytes: a file in a message may have at most "
                                           "%3 bytes (%4 MB)")
                                .arg(shown(entry.name))
                                .arg(size)
                                .arg(m_limits.memberBytes)
                                .arg(m_limits.memberBytes >> 20));
        total += size;
    }
    if (total > m_limits.totalBytes)
        return failWith(LimitExceeded,
                        QStringLiteral("the files have %1 bytes together: a message may have at "
                                       "most %2 bytes (%3 MB)")
                            .arg(total)
                            .arg(m_limits.totalBytes)
                            .arg(m_limits.totalBytes >> 20));
    return Success;
}

// A last path component with "*" or "?" stands for the regular files directly in
// that folder that match it, sorted by name so the same folder always packs the
// same way; "*.*" and "*" take every file, with or without a dot in its name.
int TarEngine::collectFiles(const QStringList& patterns, QList<PackEntry>* entries) {
    for (const QString& pattern : patterns) {
        const qsizetype slash = pattern.lastIndexOf(u'/');
        const QString leaf = pattern.mid(slash + 1);
        if (!leaf.contains(u'*') && !leaf.contains(u'?')) {
            const QFileInfo info(pattern);
            if (!info.isFile())
                return failWith(MissingFile, QStringLiteral("no file %1").arg(pattern));
            entries->append({pattern, info.fileName()});
            continue;
        }
        const QString folder =
            slash < 0 ? QStringLiteral(".") : pattern.left(std::max<qsizetype>(slash, 1));
        QDir dir(folder);
        if (!dir.exists())
            return failWith(MissingFile, QStringLiteral("no folder %1").arg(folder));
        const bool everything = leaf == QLatin1String("*.*") || leaf == QLatin1String("*");
        QStringList names =
            dir.entryList(everything ? QStringList() : QStringList{leaf},
                          QDir::Files | QDir::Hidden | QDir::NoSymLinks | QDir::CaseSensitive);
        if (names.isEmpty())
            return failWith(MissingFile, QStringLiteral("no file matches %1").arg(pattern));
        std::sort(names.begin(), names.end());
        for (const QString& name : std::as_const(names))
            entries->append({dir.filePath(name), name});
    }
    return Success;
}

int TarEngine::writeArchive(const QString& target, bool gzip, const QList<PackEntry>& entries) {
    // Declared before the writer, so the writer flushes into it before it goes.
    AtomicFile file(target);
    if (!file.open(QIODevice::WriteOnly))
        return failWith(WriteFailed,
                        QStringLiteral("cannot create %1: %2").arg(target, file.errorString()));
    const Writer writer(archive_write_new());
    // ustar headers, with pax records only where a name or size needs them.
    archive_write_set_format_pax_restricted(writer.get());
    if (gzip) {
        archive_write_add_filter_gzip(writer.get());
        archive_write_set_filter_option(writer.get(), "gzip", "timestamp", nullptr);
        // The file ends where the gzip stream ends: block padding after it is
        // read by gzip as trailing garbage.
        archive_write_set_bytes_in_last_block(writer.get(), 1);
    }
    if (archive_write_open(writer.get(), &file, nullptr, writeToSaveFile, nullptr) != ARCHIVE_OK)
        return failWith(WriteFailed, archiveError(writer.get()));
    for (const PackEntry& entry : entries) {
        const int written = writeMember(writer.get(), entry);
        if (written != Success)
            return written;
    }
    if (archive_write_close(writer.get()) != ARCHIVE_OK)
        return failWith(WriteFailed,
                        QStringLiteral("cannot write %1: %2").arg(target, file.errorString()));
    if (!file.commit())
        return failWith(WriteFailed,
                        QStringLiteral("cannot write %1: %2").arg(target, file.errorString()));
    return Success;
}

int TarEngine::writeMember(archive* writer, const PackEntry& entry) {
    QFile in(entry.path);
    if (!in.open(QIODevice::ReadOnly))
        return failWith(MissingFile,
                        QStringLiteral("cannot read %1: %2").arg(entry.path, in.errorString()));
    const qint64 size = in.size();
    const Entry header(archive_entry_new());
    // The name goes in as the bytes it has on disk: handing libarchive the UTF-8
    // form instead makes it convert through the locale, which fails (and crashes
    // the pax writer) under the C locale.
    archive_entry_copy_pathname(header.get(), QFile::encodeName(entry.name).constData());
    archive_entry_set_filetype(header.get(), AE_IFREG);
    archive_entry_set_perm(header.get(), 0644);
    archive_entry_set_size(header.get(), size);
    archive_entry_set_mtime(header.get(), QFileInfo(in).lastModified().toSecsSinceEpoch(), 0);
    if (!headerRead(archive_write_header(writer, header.get())))
        return failWith(
            WriteFailed,
            QStringLiteral("cannot store %1: %2").arg(shown(entry.name), archiveError(writer)));
    std::vector<char> buffer(copyBlock);
    qint64 total = 0;
    while (total < size) {
        const qint64 got = in.read(buffer.data(), std::min<qint64>(copyBlock, size - total));
        if (got <= 0)
            break;
        if (archive_write_data(writer, buffer.data(), size_t(got)) != got)
            return failWith(
                WriteFailed,
                QStringLiteral("cannot store %1: %2").arg(shown(entry.name), archiveError(writer)));
        total += got;
    }
    // The header already holds the size: a file that grew or shrank since
    // cannot be stored faithfully.
    if (total != size || in.read(buffer.data(), 1) != 0)
        return failWith(WriteFailed,
                        QStringLiteral("%1 changed while it was packed").arg(entry.path));
    if (archive_write_finish_entry(writer) != ARCHIVE_OK)
        return failWith(WriteFailed, archiveError(writer));
    listMember(entry.name);
    return Success;
}

int TarEngine::unpack(const TarCommandLine& command) {
    if (command.keepsFolders())
        return failWith(BadCommandLine,
                        QStringLiteral("extraction keeps no folder names: give --use-directory=0"));
    QString error;
    const Reader reader = openReader(command.archive(), &error);
    if (!reader)
        return failWith(NotAnArchive, error);
    archive_entry* entry = nullptr;
    const int status = archive_read_next_header(reader.get(), &entry);
    if (!headerRead(status))
        return failWith(NotAnArchive, status == ARCHIVE_EOF
                                          ? QStringLiteral("the archive holds no member")
                                          : archiveError(reader.get()));

    const QString folderPath = command.outputFolder();
    QDir().mkpath(folderPath);
    // Every file is created relative to this handle by a bare file name, so
    // nothing can land elsewhere even if the folder's path changes meanwhile.
    const FileDescriptor folder(
        ::open(QFile::encodeName(folderPath).constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.get() < 0)
        return failWith(WriteFailed,
                        QStringLiteral("cannot open folder %1: %2").arg(folderPath, systemError()));
    const int result = extractAll(reader.get(), entry, folder.get());
    if (result != Success || m_refused.isEmpty())
        return result;
    return failWith(MembersRefused,
                    QStringLiteral("refused %1").arg(m_refused.join(QStringLiteral("; "))));
}

int TarEngine::extractAll(archive* reader, archive_entry* entry, int folder) {
    for (int members = 1;; ++members) {
        if (members > m_limits.members)
            return failWith(LimitExceeded,
                            QStringLiteral("more than %1 members").arg(m_limits.members));
        const int result = extractEntry(reader, entry, folder);
        if (result != Success)
            return result;
        const int status = archive_read_next_header(reader, &entry);
        if (status == ARCHIVE_EOF)
            return Success;
        if (!headerRead(status))
            return failWith(DamagedArchive, archiveError(reader));
    }
}

int TarEngine::extractEntry(archive* reader, archive_entry* entry, int folder) {
    const QString name = memberName(entry);
    const qint64 size = archive_entry_size_is_set(entry) ? archive_entry_size(entry) : 0;
    m_declaredBytes += std::max<qint64>(size, 0);
    if (size > m_limits.memberBytes || m_declaredBytes > m_limits.totalBytes)
        return failWith(
            LimitExceeded,
            QStringLiteral("%1 (%2 bytes) goes beyond the size limits").arg(shown(name)).arg(size));
    if (archive_entry_filetype(entry) == AE_IFDIR && !archive_entry_hardlink(entry))
        return Success;
    QString refusal = kindRefusal(entry);
    if (refusal.isEmpty())
        refusal = nameRefusal(name);
    if (!refusal.isEmpty()) {
        m_refused.append(shown(name) + QStringLiteral(": ") + refusal);
        return Success;
    }
    return extractMember(reader, folder, name);
}

// Written under a temporary name and renamed when complete: a damaged archive
// leaves no half file under the real name, and the rename replaces whatever
// was there (a symbolic link included) without following it.
int TarEngine::extractMember(archive* reader, int folder, const QString& name) {
    const QByteArray leaf = QFile::encodeName(name.mid(name.lastIndexOf(u'/') + 1));
    QByteArray temporary;
    int fd = -1;
    for (int tries = 0; fd < 0 && tries < temporaryNameTries; ++tries) {
        temporary = temporaryName();
        fd = ::openat(folder, temporary.constData(),
                      O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0644);
        if (fd < 0 && errno != EEXIST)
            break;
    }
    if (fd < 0)
        return failWith(WriteFailed,
                        QStringLiteral("cannot create %1: %2").arg(shown(name), systemError()));
    int result = Success;
    {
        const FileDescriptor file(fd);
        result = copyData(reader, file.get(), name);
    }
    if (result == Success &&
        ::renameat(folder, temporary.constData(), folder, leaf.constData()) == 0) {
        listMember(name);
        return Success;
    }
    // A folder of the member's name is in the way: that member is refused.
    if (result == Success)
        m_refused.append(shown(name) + QStringLiteral(": cannot be stored: ") + systemError());
    ::unlinkat(folder, temporary.constData(), 0);
    return result;
}

int TarEngine::copyData(archive* reader, int file, const QString& name) {
    std::vector<char> buffer(copyBlock);
    qint64 total = 0;
    for (;;) {
        const la_ssize_t got = archive_read_data(reader, buffer.data(), buffer.size());
        if (got == 0)
            return Success;
        if (got < 0)
            return failWith(DamagedArchive,
                            QStringLiteral("%1: %2").arg(shown(name), archiveError(reader)));
        total += got;
        if (total > m_limits.memberBytes)
            return failWith(LimitExceeded,
                            QStringLiteral("%1 goes beyond the size limit").arg(shown(name)));
        if (!writeAll(file, buffer.data(), got))
            return failWith(WriteFailed,
                            QStringLiteral("cannot write %1: %2").arg(shown(name), systemError()));
    }
}

void TarEngine::listMember(const QString& name) {
    if (m_listing && m_listed.size() < m_listLimit)
        m_listed += name + u'\n';
}

int TarEngine::failWith(int result, const QString& reason) {
    m_lastError = reason;
    return result;
}
