#include "RegularFile.h"

#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

bool RegularFile::open(const QString& path, QFile& file, QString& why) {
    if (QFileInfo(path).isDir()) {
        why = QStringLiteral("it is a folder");
        return false;
    }
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        why = QString::fromLocal8Bit(std::strerror(errno));
        return false;
    }
    struct stat info {};
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        ::close(fd);
        why = QStringLiteral("it is no regular file");
        return false;
    }
    if (!file.open(fd, QIODevice::ReadOnly, QFileDevice::AutoCloseHandle)) {
        ::close(fd);
        why = file.errorString();
        return false;
    }
    return true;
}
