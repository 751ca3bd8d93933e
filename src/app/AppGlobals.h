#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>
#include <memory>

class clsPropertiesXML;
class clsXMLocalizer;

// The process-wide state that start-up fills in and the rest of the program
// reads. Each singleton has one accessor; tests install their own instances.
class AppGlobals {
public:
    // The settings store; nullptr until start-up has opened it.
    static clsPropertiesXML* settings();
    static void installSettings(std::unique_ptr<clsPropertiesXML> settings);
    static bool settingsOpen() { return settings() != nullptr; }

    // A setting from the installed store, or the default when none is installed.
    static QString setting(const QString& section, const QString& key, const QString& defaultValue);
    // The media archive the program comes with, from the settings' "paths".
    static QString programArchive();

    static clsXMLocalizer* localizer();
    static void installLocalizer(std::unique_ptr<clsXMLocalizer> localizer);

    // A localized text, or the fallback while no localizer runs yet (the
    // earliest start-up failures are reported before it exists).
    static QString text(const QString& key, const QString& fallback);
    // The same with "%0", "%1" ... filled in and "%n" as a line break.
    static QString text(const QString& key, const QString& fallback, const QStringList& parameters);

    static std::uint32_t userLcid();
    static void setUserLcid(std::uint32_t lcid);

    static QString commandLine();
    static void setCommandLine(const QString& line);

    static QString helpFile();
    static void setHelpFile(const QString& path);

    // Destroys the localizer and then the settings store, which saves itself
    // when it has unsaved changes.
    static void shutdown();
};
