#include "PlainFileName.h"

#include "AppPaths.h"
#include "AtomicFile.h"

#include <QFile>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
// What one folder entry may be called on this system, in bytes.
constexpr qsizetype kMaxNameBytes = 255;

bool fail(QString* why, const QString& text) {
    if (why)
        *why = text;
    return false;
}

QString quoted(const QString& name) {
    return u'"' + name + u'"';
}
} // namespace

QString PlainFileName::refusal(const QString& name) {
    if (name.isEmpty())
        return QStringLiteral("an empty file name");
    if (name == u'.' || name == QLatin1String(".."))
        return quoted(name) + QStringLiteral(" is a folder, not a file name");
    if (name.contains(u'/') || name.contains(u'\\'))
        return quoted(name) + QStringLiteral(" is a path, not a plain file name");
    for (const QChar c : name)
        if (c.unicode() < 0x20 || c.unicode() == 0x7f)
            return quoted(name) + QStringLiteral(" holds a control character");
    if (QFile::encodeName(name).size() > kMaxNameBytes)
        return quoted(name.left(60) + QStringLiteral("...")) +
               QStringLiteral(" is longer than a file name can be");
    return QString();
}

QString PlainFileName::existingFile(const QString& folder, const QString& name, QString* why) {
    const QString wrong = refusal(name);
    if (!wrong.isEmpty()) {
        fail(why, wrong);
        return QString();
    }
    const QString path = AppPaths::withSlash(folder) + name;
    struct stat info {};
    if (::lstat(QFile::encodeName(path).constData(), &info) != 0) {
        fail(why, quoted(name) + QStringLiteral(" is missing"));
        return QString();
    }
    if (S_ISLNK(info.st_mode)) {
        fail(why, quoted(name) + QStringLiteral(" is a link; links are not followed"));
        return QString();
    }
    if (!S_ISREG(info.st_mode)) {
        fail(why, quoted(name) + QStringLiteral(" is not a regular file"));
        return QString();
    }
    return path;
}

bool PlainFileName::open(const QString& folder, const QString& name, QFile& file, QString* why) {
    const QString path = existingFile(folder, name, why);
    if (path.isEmpty())
        return false;
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC);
    if (fd < 0)
        return fail(why, QStringLiteral("cannot read %1: %2")
                             .arg(quoted(name), QString::fromLocal8Bit(std::strerror(errno))));
    struct stat info {};
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        ::close(fd);
        return fail(why, quoted(name) + QStringLiteral(" is not a regular file"));
    }
    if (!file.open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(fd);
        return fail(why,
                    QStringLiteral("cannot read %1: %2").arg(quoted(name), file.errorString()));
    }
    return true;
}

bool PlainFileName::copy(const QString& folder, const QString& name, const QString& target,
                         QString* why) {
    QFile source;
    return open(folder, name, source, why) && AtomicFile::copyFile(source, target, why);
}
