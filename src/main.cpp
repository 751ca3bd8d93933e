#include "MediaBackend.h"
#include "PrivateTempDir.h"
#include "SignalCleanup.h"
#include "modMain.h"

#include <QApplication>
#include <QIcon>

int main(int argc, char* argv[]) {
    // Temporary folders go with the program, however it ends.
    SignalCleanup::install();
    PrivateTempDir::removeLeftovers();
    MediaBackend::choose();
    QApplication app(argc, argv);
    QApplication::setApplicationName("Vellumo");
    QApplication::setApplicationVersion(VELLUMO_VERSION);
    // Lets the desktop match the windows to the menu entry and its icon.
    QGuiApplication::setDesktopFileName(QStringLiteral(VELLUMO_APP_ID));
    // Outside a full desktop no icon theme is named; the freedesktop names
    // the program uses (folders, drives, tools) then come from this one.
    QIcon::setFallbackThemeName(QStringLiteral("Adwaita"));
    if (const std::optional<int> exitCode = modMain::Main(QApplication::arguments())) {
        modMain::Shutdown();
        return *exitCode;
    }
    const int exitCode = QApplication::exec();
    modMain::Shutdown();
    return exitCode;
}
