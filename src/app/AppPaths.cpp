#include "AppPaths.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>

namespace {
QString& programFolderOverride() {
    static QString folder;
    return folder;
}

QString executableFolder() {
    if (QCoreApplication::instance())
        return QCoreApplication::applicationDirPath();
    return QDir::currentPath();
}
} // namespace

QString AppPaths::executableBaseName() {
    return QStringLiteral("vellumo");
}

QString AppPaths::programFolder() {
    if (!programFolderOverride().isEmpty())
        return programFolderOverride();
    const QString exeDir = executableFolder();
    const QString settingsName = executableBaseName() + ".xml";
    if (QFileInfo::exists(exeDir + "/" + settingsName))
        return withSlash(exeDir);
    const QString installed = QDir::cleanPath(exeDir + "/../share/vellumo");
    if (QFileInfo::exists(installed + "/" + settingsName))
        return withSlash(installed);
    return withSlash(exeDir);
}

void AppPaths::setProgramFolder(const QString& folder) {
    programFolderOverride() = folder.isEmpty() ? QString() : withSlash(folder);
}

QString AppPaths::localAppDataFolder() {
    return withSlash(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation));
}

QString AppPaths::documentsFolder() {
    return withSlash(QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
}

QString AppPaths::tempFolder() {
    return withSlash(QDir::tempPath());
}

QString AppPaths::toDisk(const QString& storedPath) {
    QString path = storedPath;
    path.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return path;
}

QString AppPaths::programRelative(const QString& storedPath) {
    if (storedPath.startsWith(QLatin1Char('\\')))
        return programFolder() + toDisk(storedPath.mid(1));
    return toDisk(storedPath);
}

QString AppPaths::withSlash(const QString& folder) {
    QString path = toDisk(folder);
    if (!path.endsWith(QLatin1Char('/')))
        path += QLatin1Char('/');
    return path;
}

QString AppPaths::extensionOf(const QString& fileName) {
    const qsizetype dot = fileName.lastIndexOf(QLatin1Char('.'));
    return dot < 0 ? QString() : fileName.mid(dot);
}

bool AppPaths::createPath(const QString& folder) {
    const QString path = toDisk(folder);
    QDir().mkpath(path);
    return QFileInfo(path).isDir();
}

QString AppPaths::programArchive(const QString& storedPath) {
    QString relative = toDisk(storedPath);
    while (relative.startsWith(QLatin1Char('/')))
        relative.remove(0, 1);
    return withSlash(programFolder() + relative);
}
