#include "WorkFolderClaim.h"

#include "AppPaths.h"
#include "AtomicFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {
QString withoutSlash(QString folder) {
    while (folder.size() > 1 && folder.endsWith(u'/'))
        folder.chop(1);
    return folder;
}

// The mark says whose work it is; it lies beside the folder, not in it, so
// that saving the folder as the message never packs it.
constexpr char kMarkSuffix[] = ".unsaved";
constexpr char kLockSuffix[] = ".lock";
constexpr char kUntitled[] = "untitled";
constexpr char kMessageFile[] = "file:";
} // namespace

WorkFolderClaim::WorkFolderClaim(QString folder, std::unique_ptr<QLockFile> lock)
    : m_folder(std::move(folder)), m_lock(std::move(lock)) {}

std::unique_ptr<WorkFolderClaim> WorkFolderClaim::claim(const QString& base) {
    const QString first = withoutSlash(base);
    QDir().mkpath(QFileInfo(first).path());
    for (int copy = 1; copy <= kMostCopies; ++copy) {
        const QString folder = copy == 1 ? first : first + u'-' + QString::number(copy);
        auto lock = std::make_unique<QLockFile>(folder + kLockSuffix);
        // A lock is stale only when its process is gone; a living copy may
        // hold its folder for weeks.
        lock->setStaleLockTime(0);
        if (!lock->tryLock(0))
            continue;
        AppPaths::createPath(folder);
        return std::unique_ptr<WorkFolderClaim>(
            new WorkFolderClaim(AppPaths::withSlash(folder), std::move(lock)));
    }
    return nullptr;
}

QString WorkFolderClaim::markPath() const {
    return withoutSlash(m_folder) + kMarkSuffix;
}

std::optional<QString> WorkFolderClaim::unsavedWork() const {
    QFile mark(markPath());
    if (!mark.open(QIODevice::ReadOnly))
        return std::nullopt;
    QString said = QString::fromUtf8(mark.readAll());
    if (said.endsWith(u'\n'))
        said.chop(1);
    if (said.startsWith(QLatin1String(kMessageFile)))
        return said.mid(int(qstrlen(kMessageFile)));
    return said == QLatin1String(kUntitled) ? std::optional<QString>(QString()) : std::nullopt;
}

bool WorkFolderClaim::markUnsaved(const QString& messageFile) {
    const QString said =
        messageFile.isEmpty() ? QString::fromLatin1(kUntitled) : kMessageFile + messageFile;
    return AtomicFile::writeFile(markPath(), said.toUtf8() + '\n');
}

void WorkFolderClaim::clearMark() {
    QFile::remove(markPath());
}
