#include "PrivateTempDir.h"
#include "SignalCleanup.h"
#include "modMain.h"

#include <QApplication>

int main(int argc, char* argv[]) {
    // Temporary folders go with the program, however it ends.
    SignalCleanup::install();
    PrivateTempDir::removeLeftovers();
    QApplication app(argc, argv);
    QApplication::setApplicationName("Vellumo");
    QApplication::setApplicationVersion(VELLUMO_VERSION);
    if (const std::optional<int> exitCode = modMain::Main(QApplication::arguments())) {
        modMain::Shutdown();
        return *exitCode;
    }
    const int exitCode = QApplication::exec();
    modMain::Shutdown();
    return exitCode;
}
