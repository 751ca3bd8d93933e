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

// The executable's folder when it holds the file (the build tree keeps
// everything there), else the installed folder, given relative to the
// executable's, when that holds it; the executable's folder otherwise.
QString folderHolding(const QString& fileName, const QString& installedRelative) {
    const QString exeDir = executableFolder();
    if (QFileInfo::exists(exeDir + "/" + fileName))
        return AppPaths::withSlash(exeDir);
    const QString installed = QDir::cleanPath(exeDir + "/" + installedRelative);
    if (QFileInfo::exists(installed + "/" + fileName))
        return AppPaths::withSlash(installed);
    return AppPaths::withSlash(exeDir);
}
} // namespace

QString AppPaths::executableBaseName() {
    return QStringLiteral("vellumo");
}

QString AppPaths::programFolder() {
    if (!programFolderOverride().isEmpty())
        return programFolderOverride();
    return folderHolding(executableBaseName() + ".xml",
                         QStringLiteral(VELLUMO_INSTALLED_PROGRAM_FOLDER));
}

QString AppPaths::toolFolder(const QString& toolName) {
    return folderHolding(toolName, QStringLiteral(VELLUMO_INSTALLED_TOOL_FOLDER));
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
