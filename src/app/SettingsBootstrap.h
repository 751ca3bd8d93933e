#pragma once

#include <QString>
#include <memory>

class clsPropertiesXML;

// Opens the user's settings file the way every start of the program does:
// seeded from the program folder's copy on the first start, an old INI file
// migrated once, and the first-run set-up (language, user archive) done when
// "Initialized" is not "1". Start-up and the command line tool share it.
class SettingsBootstrap {
public:
    // Throws AppError when the user's settings folder cannot be created.
    static std::unique_ptr<clsPropertiesXML> openSettings();
    // Runs the first-run set-up when "preferences"/"Initialized" is "" or "0".
    // Returns whether it ran.
    static bool runFirstRun(clsPropertiesXML& settings);

    static std::unique_ptr<clsPropertiesXML> openAndPrepare();

    // The language is enabled in "languages" and its file exists.
    static bool isLanguageInstalled(clsPropertiesXML& settings, const QString& code);
    // The first field of "langid"/<4 hex digits>, lower-cased; "" when missing.
    static QString languageCodeForId(clsPropertiesXML& settings, unsigned id);

    static QString userSettingsFile(clsPropertiesXML& programSettings);

private:
    static void chooseLanguage(clsPropertiesXML& settings);
    static void setUpUserArchive(clsPropertiesXML& settings);
};
