#pragma once

#include <QString>
#include <QStringList>
#include <optional>

class clsPropertiesXML;
class frmMain;
class frmSplash;

// The program's start: one copy per user, the settings, the language, the
// help file, the command line, the main window and the splash screen.
class modMain {
public:
    // Runs the start-up steps. Returns an exit code when this copy ends now
    // (another copy was brought forward, or a step failed and was reported);
    // nothing when the program goes on with its window.
    static std::optional<int> Main(const QStringList& arguments);
    // Closes the windows, stops answering later copies and ends the
    // singletons; the settings save themselves when changed.
    static void Shutdown();

    static frmMain* mainWindow();
    static frmSplash* splash();
    static bool splashShown();
    static QString currentStep();

    // The arguments after the program name, with a single blank in front.
    static QString commandLineText(const QStringList& arguments);
    // <program folder> + "paths"/"help" + code + ".html"; "" unless "Help" is "1".
    static QString helpFilePath(clsPropertiesXML& settings, const QString& language);

private:
    static bool activateRunningCopy(const QStringList& arguments);
    static void runSteps(const QStringList& arguments);
    static void setStep(const QString& label);
    static void reportFailure(const QString& description);
    static void showSplash(clsPropertiesXML& settings);
};
