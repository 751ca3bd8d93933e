#include "modMain.h"

#include "AppError.h"
#include "AppGlobals.h"
#include "AppPaths.h"
#include "DialogService.h"
#include "EventPump.h"
#include "LocaleInfo.h"
#include "SettingsBootstrap.h"
#include "SingleInstance.h"
#include "VbFormat.h"
#include "clsPropertiesXML.h"
#include "clsXMLocalizer.h"
#include "frmMain.h"
#include "frmSplash.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QPointer>
#include <QTextStream>
#include <memory>

namespace {
struct StartState {
    QString step;
    std::unique_ptr<frmMain> mainWindow;
    QPointer<frmSplash> splash;
    bool splashShown = false;
    QPointer<SingleInstance> instance;
};

StartState& state() {
    static StartState instance;
    return instance;
}

QString quoted(const QString& argument) {
    return argument.contains(QLatin1Char(' ')) ? '"' + argument + '"' : argument;
}
} // namespace

std::optional<int> modMain::Main(const QStringList& arguments) {
    if (activateRunningCopy(arguments))
        return 0;
    const QLocale locale = LocaleInfo::systemLocale();
    AppGlobals::setUserLcid(LocaleInfo::lcidOf(locale));
    VbFormat::setDecimalSeparator(LocaleInfo::decimalSeparator(locale));
    try {
        runSteps(arguments);
    } catch (const AppError& error) {
        reportFailure(error.description());
        return 1;
    } catch (const std::exception& error) {
        reportFailure(QString::fromLocal8Bit(error.what()));
        return 1;
    }
    return std::nullopt;
}

bool modMain::activateRunningCopy(const QStringList& arguments) {
    auto instance = std::make_unique<SingleInstance>(
        SingleInstance::serverNameFor(AppPaths::localAppDataFolder()));
    // The first copy works in another folder: files go over as absolute paths.
    QStringList handed;
    for (const QString& argument : arguments.mid(1))
        handed << (QFileInfo::exists(argument) ? QFileInfo(argument).absoluteFilePath() : argument);
    if (instance->activateRunningCopy(handed))
        return true;
    if (!instance->listen()) {
        // Refusing to start would leave the user with no window at all; this
        // copy runs on its own, without answering later ones.
        qWarning("Later copies cannot reach this one (%s); each opens its own window.",
                 qUtf8Printable(instance->errorString()));
        return false;
    }
    instance->setParent(QCoreApplication::instance());
    state().instance = instance.release();
    return false;
}

void modMain::runSteps(const QStringList& arguments) {
    setStep("ModMain.Main - Program Properties");
    AppGlobals::installSettings(SettingsBootstrap::openSettings());
    clsPropertiesXML& settings = *AppGlobals::settings();
    SettingsBootstrap::runFirstRun(settings);

    setStep("ModMain.Main - clsXMLLocalizer");
    AppGlobals::installLocalizer(clsXMLocalizer::forChosenLanguage(settings));

    setStep("ModMain.Main - Help file");
    AppGlobals::setHelpFile(helpFilePath(settings, AppGlobals::localizer()->GetLanguage()));

    setStep("ModMain.Main - Command line");
    AppGlobals::setCommandLine(commandLineText(arguments));

    setStep("ModMain.Main - frmMain.Show");
    state().mainWindow = std::make_unique<frmMain>();
    if (state().instance) {
        QObject::connect(state().instance, &SingleInstance::activationRequested,
                         state().mainWindow.get(), &frmMain::bringToFront);
        QObject::connect(state().instance, &SingleInstance::commandLineReceived,
                         state().mainWindow.get(), &frmMain::openHandedArguments);
    }
    state().mainWindow->show();
    state().mainWindow->openCommandLine(AppGlobals::commandLine());

    showSplash(settings);
}

void modMain::showSplash(clsPropertiesXML& settings) {
    if (settings.GetProp("preferences", "ShowSplash", "1") != QLatin1String("1"))
        return;
    const QString video = settings.GetProp("preferences", "SplashVideo", "");
    auto* splash = new frmSplash();
    splash->setVideo(video);
    state().splash = splash;
    state().splashShown = true;
    splash->startPlayback();
    pumpEvents();
}

void modMain::Shutdown() {
    delete state().splash.data();
    state().mainWindow.reset();
    delete state().instance.data();
    AppGlobals::shutdown();
}

frmMain* modMain::mainWindow() {
    return state().mainWindow.get();
}
frmSplash* modMain::splash() {
    return state().splash.data();
}
bool modMain::splashShown() {
    return state().splashShown;
}
QString modMain::currentStep() {
    return state().step;
}

QString modMain::commandLineText(const QStringList& arguments) {
    QStringList rest;
    for (const QString& argument : arguments.mid(1))
        rest << quoted(argument);
    const QString line = rest.join(QLatin1Char(' '));
    if (line.isEmpty() || line.startsWith(QLatin1Char(' ')))
        return line;
    return QLatin1Char(' ') + line;
}

QString modMain::helpFilePath(clsPropertiesXML& settings, const QString& language) {
    if (settings.GetProp("preferences", "Help", "0") != QLatin1String("1"))
        return QString();
    QString folder = AppPaths::toDisk(settings.GetProp("paths", "help", "\\help\\"));
    while (folder.startsWith(QLatin1Char('/')))
        folder.remove(0, 1);
    return AppPaths::programFolder() + folder + language + ".html";
}

void modMain::setStep(const QString& label) {
    state().step = label;
}

void modMain::reportFailure(const QString& description) {
    const QString text = AppGlobals::text("STR_ERROR_UNEXPECTED", "An unexpected error occurred.") +
                         "\n\n" + description + " (" + state().step + ")";
    QTextStream(stderr) << text << Qt::endl;
    DialogService::messageBox(nullptr, text, AppGlobals::text("STR_ERROR", "Error"),
                              QMessageBox::Ok, QMessageBox::Critical);
}
