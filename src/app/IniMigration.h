#pragma once

#include <QString>

class clsPropertiesXML;

// Moves the values of an old vellumo.ini beside the program into the XML
// settings: every section but "this", "LanguageID" becoming a language code
// under "Language". Section "this" says whether to log the result ("Log") and
// whether to delete the INI file afterwards ("Delete").
class IniMigration {
public:
    // Does nothing when the INI file does not exist. Returns whether it ran.
    static bool run(clsPropertiesXML& settings);
    // "H0407" (hexadecimal) or "1031" (decimal) to an installed language code:
    // the full id, then its primary language, else "en-us".
    static QString languageCodeFor(clsPropertiesXML& settings, const QString& languageId);
};
