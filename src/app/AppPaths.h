#pragma once

#include <QString>

// The folders the program works in. Settings store paths with "\" separators and
// a leading "\" for "relative to the program folder"; these helpers turn them
// into real paths on this system.
class AppPaths {
public:
    // "vellumo": names the settings file, the old INI file and the application.
    static QString executableBaseName();

    // The folder holding the shipped vellumo.xml, with a trailing "/": the
    // executable's own folder in the build tree, else the installed program
    // folder found from the executable, so a moved installation still works.
    static QString programFolder();
    // The folder holding the helper program toolName (the package builder),
    // with a trailing "/": beside the executable in the build tree, else the
    // installation's private tool folder found from the executable.
    static QString toolFolder(const QString& toolName);
    // Tests run the program against a folder of their own.
    static void setProgramFolder(const QString& folder);

    // The user's local application-data folder, with a trailing "/".
    static QString localAppDataFolder();
    static QString documentsFolder();
    static QString tempFolder();

    // "\" becomes "/"; nothing else changes.
    static QString toDisk(const QString& storedPath);
    // A leading "\" is resolved against the program folder.
    static QString programRelative(const QString& storedPath);
    // The path with a trailing "/" added when missing.
    static QString withSlash(const QString& folder);
    // The program's own media archive from its stored path ("\\archive\\"),
    // always under the program folder, with a trailing "/".
    static QString programArchive(const QString& storedPath);
    // The text from the last "." on, dot included, as it stands (".JPG");
    // "" when there is no ".".
    static QString extensionOf(const QString& fileName);
    // Creates every missing folder of the path; true when it exists afterwards.
    static bool createPath(const QString& folder);
};
