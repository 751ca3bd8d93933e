#include "TempDataHome.h"

#include "AppGlobals.h"
#include "AppPaths.h"
#include "LocaleInfo.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace {
void copyTree(const QString& source, const QString& target) {
    QDirIterator it(source, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString file = it.next();
        const QString destination = target + "/" + QDir(source).relativeFilePath(file);
        QDir().mkpath(QFileInfo(destination).path());
        QFile::copy(file, destination);
    }
}
} // namespace

void TempDataHome::SetUp() {
    ASSERT_TRUE(m_root.isValid());
    m_programFolder = m_root.path() + "/program/";
    m_dataHome = m_root.path() + "/data/";
    copyTree(QStringLiteral(VELLUMO_SOURCE_DIR) + "/data", m_programFolder);
    QDir().mkpath(m_dataHome);
    qputenv("XDG_DATA_HOME", m_dataHome.toLocal8Bit());
    AppPaths::setProgramFolder(m_programFolder);
    LocaleInfo::setSystemLocale(QLocale(QLocale::English, QLocale::UnitedStates));
}

void TempDataHome::TearDown() {
    AppGlobals::shutdown();
    AppPaths::setProgramFolder(QString());
    LocaleInfo::setSystemLocale(std::nullopt);
}

QString TempDataHome::programFile(const QString& relative) const {
    return m_programFolder + relative;
}

QString TempDataHome::dataFile(const QString& relative) const {
    return m_dataHome + relative;
}

QString TempDataHome::readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

void TempDataHome::writeFile(const QString& path, const QByteArray& bytes) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(bytes);
}
