#include "FolderPrint.h"

#include <QCryptographicHash>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <sys/stat.h>

std::map<QString, QString> folderFingerprint(const QString& folder) {
    std::map<QString, QString> result;
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString entry = it.next();
        struct stat info {};
        lstat(QFile::encodeName(entry).constData(), &info);
        QFile file(entry);
        const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        result[entry] = QStringLiteral("%1 %2 %3 %4")
                            .arg(info.st_mode, 0, 8)
                            .arg(info.st_size)
                            .arg(info.st_mtim.tv_nsec)
                            .arg(QString::fromLatin1(
                                QCryptographicHash::hash(bytes, QCryptographicHash::Sha1).toHex()));
    }
    return result;
}
