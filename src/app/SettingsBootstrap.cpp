#include "SettingsBootstrap.h"

#include "AppError.h"
#include "AppPaths.h"
#include "IniMigration.h"
#include "LocaleInfo.h"
#include "clsPropertiesXML.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>

namespace {
const QString kStep = QStringLiteral("ModMain.Main - Program Properties");

// Copies every file and folder under source into target, overwriting.
void copyTree(const QString& source, const QString& target) {
    const QDir sourceDir(source);
    QDirIterator it(source, QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QFileInfo entry(it.next());
        const QString destination = target + sourceDir.relativeFilePath(entry.filePath());
        if (entry.isDir()) {
            QDir().mkpath(destination);
        } else {
            QFile::remove(destination);
            QFile::copy(entry.filePath(), destination);
        }
    }
}

// Loading alone never marks the store changed, so the probe writes nothing.
bool keepsUserFile(const QString& userFile) {
    clsPropertiesXML probe;
    probe.Initialize(userFile, QString());
    return !probe.startedEmpty();
}
} // namespace

QString SettingsBootstrap::userSettingsFile(clsPropertiesXML& programSettings) {
    const QString folder = AppPaths::withSlash(
        AppPaths::localAppDataFolder() + programSettings.GetProp("paths", "settingsPath", ""));
    return folder + AppPaths::executableBaseName() + ".xml";
}

std::unique_ptr<clsPropertiesXML> SettingsBootstrap::openSettings() {
    auto settings = std::make_unique<clsPropertiesXML>();
    IniMigration::run(*settings);
    const QString userFile = userSettingsFile(*settings);
    const QString userFolder = QFileInfo(userFile).path();
    if (!AppPaths::createPath(userFolder))
        throw AppError(kStep, "The settings folder " + userFolder + " cannot be created.");
    if (QFileInfo::exists(userFile) && !keepsUserFile(userFile)) {
        // Starting from an empty store would lose the folders the program works in;
        // the broken file is kept for the user and a fresh copy takes its place.
        QFile::remove(userFile + ".broken");
        QFile::rename(userFile, userFile + ".broken");
    }
    settings->Reset();
    if (QFileInfo::exists(userFile)) {
        settings->Initialize(userFile, QString());
    } else {
        // The user's file starts as a copy of the program's, migrated values included.
        settings->setXmlFileName(userFile);
        settings->SaveXmlFile();
    }
    return settings;
}

bool SettingsBootstrap::runFirstRun(clsPropertiesXML& settings) {
    const QString initialized = settings.GetProp("preferences", "Initialized", "");
    if (!initialized.isEmpty() && initialized != QLatin1String("0"))
        return false;
    chooseLanguage(settings);
    setUpUserArchive(settings);
    settings.SetProp("preferences", "Initialized", "1");
    settings.SaveXmlFile();
    return true;
}

std::unique_ptr<clsPropertiesXML> SettingsBootstrap::openAndPrepare() {
    auto settings = openSettings();
    runFirstRun(*settings);
    return settings;
}

bool SettingsBootstrap::isLanguageInstalled(clsPropertiesXML& settings, const QString& code) {
    const QStringList fields = settings.GetProp("languages", code, "").split(QLatin1Char(','));
    if (fields.size() < 2 || fields[1] == QLatin1String("0"))
        return false;
    const QString folder = AppPaths::withSlash(
        AppPaths::programRelative(settings.GetProp("paths", "language", "\\language\\")));
    return QFileInfo::exists(folder + code + ".xml");
}

QString SettingsBootstrap::languageCodeForId(clsPropertiesXML& settings, unsigned id) {
    const QString entry = settings.GetProp("langid", LocaleInfo::languageIdHex(id), "");
    return entry.section(QLatin1Char(';'), 0, 0).toLower();
}

void SettingsBootstrap::chooseLanguage(clsPropertiesXML& settings) {
    QString code = languageCodeForId(settings, LocaleInfo::systemLanguageId());
    if (code.isEmpty())
        code = QStringLiteral("en-us");
    if (!isLanguageInstalled(settings, code) && code.contains(QLatin1Char('-')))
        code = code.section(QLatin1Char('-'), 0, 0);
    if (!isLanguageInstalled(settings, code))
        code = QStringLiteral("en-us");
    settings.SetProp("preferences", "Language", code);
}

void SettingsBootstrap::setUpUserArchive(clsPropertiesXML& settings) {
    const QString archive = AppPaths::withSlash(AppPaths::localAppDataFolder() +
                                                settings.GetProp("paths", "userArchive", ""));
    if (!QFileInfo(archive).isDir()) {
        AppPaths::createPath(archive);
        copyTree(AppPaths::programArchive(settings.GetProp("paths", "archive", "")), archive);
    }
    settings.SetProp("browserPaths", "Backgrounds", archive + "Backgrounds");
    settings.SetProp("preferences", "SavedPictureBrowserPath", archive + "Backgrounds");
    settings.SetProp("browserPaths", "Pictures", archive + "Pictures");
    settings.SetProp("browserPaths", "Sounds", archive + "Sounds");
    settings.SetProp("browserPaths", "Animations", archive + "Animations");
}
