#include "PrivateTempDir.h"

#include "PlainFileName.h"
#include "SignalCleanup.h"

#include <QDir>
#include <QFile>

#include <cerrno>
#include <csignal>
#include <sys/stat.h>
#include <unistd.h>

namespace {
const QString kPrefix = QStringLiteral("Vellumo-");

QString folderTemplate() {
    return QDir::tempPath() + u'/' + kPrefix + QString::number(::getpid()) +
           QStringLiteral("-XXXXXX");
}

// The process id in a name "Vellumo-<pid>-XXXXXX"; 0 for any other name.
pid_t ownerOf(const QString& name) {
    const QStringList parts = name.mid(kPrefix.size()).split(u'-');
    bool ok = false;
    const qint64 pid = parts.value(0).toLongLong(&ok);
    return ok && parts.size() == 2 && parts[1].size() == 6 && pid > 0 ? pid_t(pid) : 0;
}

bool isOurFolder(const QString& path) {
    struct stat info {};
    return ::lstat(QFile::encodeName(path).constData(), &info) == 0 && S_ISDIR(info.st_mode) &&
           info.st_uid == ::getuid();
}

bool processIsGone(pid_t pid) {
    return ::kill(pid, 0) != 0 && errno == ESRCH;
}
} // namespace

PrivateTempDir::PrivateTempDir() : m_dir(folderTemplate()) {
    if (m_dir.isValid())
        m_slot = SignalCleanup::add(m_dir.path());
}

PrivateTempDir::~PrivateTempDir() {
    SignalCleanup::remove(m_slot);
}

QString PrivateTempDir::subFolder(const QString& sub) const {
    if (!isValid() || !PlainFileName::isPlain(sub))
        return QString();
    QDir folder(path());
    if (!folder.exists(sub) && !folder.mkdir(sub))
        return QString();
    return folder.filePath(sub) + u'/';
}

int PrivateTempDir::removeLeftovers() {
    const QDir temp(QDir::tempPath());
    int removed = 0;
    for (const QString& name : temp.entryList({kPrefix + u'*'}, QDir::Dirs | QDir::Hidden)) {
        const pid_t owner = ownerOf(name);
        if (owner == 0 || owner == ::getpid() || !processIsGone(owner) ||
            !isOurFolder(temp.filePath(name)))
            continue;
        // removeRecursively removes links it meets, it does not follow them.
        if (QDir(temp.filePath(name)).removeRecursively())
            ++removed;
    }
    return removed;
}
