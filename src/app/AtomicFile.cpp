#include "AtomicFile.h"

#include <QFileInfo>
#include <QIODevice>

#include <cerrno>
#include <sys/stat.h>
#include <vector>

namespace {
constexpr qint64 kCopyBlock = 64 * 1024;

bool fail(QString* why, const QString& text) {
    if (why)
        *why = text;
    return false;
}
} // namespace

AtomicFile::AtomicFile(const QString& path) : QSaveFile(path) {}

bool AtomicFile::open(OpenMode mode) {
    const QString refusal = targetRefusal(fileName());
    if (!refusal.isEmpty()) {
        setErrorString(refusal);
        return false;
    }
    return QSaveFile::open(mode);
}

QString AtomicFile::targetRefusal(const QString& path) {
    struct stat info {};
    // stat, not lstat: a link to a regular file is a fine target.
    if (::stat(QFile::encodeName(path).constData(), &info) != 0)
        return errno == ENOENT ? QString() : QStringLiteral("%1 cannot be reached").arg(path);
    if (S_ISREG(info.st_mode))
        return QString();
    if (S_ISDIR(info.st_mode))
        return QStringLiteral("%1 is a folder, not a file").arg(path);
    return QStringLiteral("%1 is not a regular file (a FIFO, a socket or a device); "
                          "it is left as it is")
        .arg(path);
}

bool AtomicFile::writeFile(const QString& path, const QByteArray& bytes, QString* why) {
    AtomicFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        return fail(why, QStringLiteral("cannot write %1: %2").arg(path, file.errorString()));
    return true;
}

bool AtomicFile::copyFile(QIODevice& source, const QString& path, QString* why) {
    AtomicFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return fail(why, QStringLiteral("cannot write %1: %2").arg(path, file.errorString()));
    std::vector<char> buffer(kCopyBlock);
    for (;;) {
        const qint64 got = source.read(buffer.data(), kCopyBlock);
        if (got < 0)
            return fail(why, QStringLiteral("cannot read: %1").arg(source.errorString()));
        if (got == 0)
            break;
        if (file.write(buffer.data(), got) != got)
            return fail(why, QStringLiteral("cannot write %1: %2").arg(path, file.errorString()));
    }
    if (!file.commit())
        return fail(why, QStringLiteral("cannot write %1: %2").arg(path, file.errorString()));
    return true;
}
