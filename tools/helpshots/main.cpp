#include "HelpShots.h"
#include "MediaBackend.h"

#include <QApplication>
#include <QIcon>
#include <QStyleHints>
#include <QTextStream>

// vellumo-helpshots LANGUAGE FOLDER [PAGES]: opens every window of the
// program in LANGUAGE with a sample message, off screen, and saves each as a
// PNG in FOLDER; with PAGES, also every help page of LANGUAGE, whole.
int main(int argc, char* argv[]) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    MediaBackend::choose();
    QApplication app(argc, argv);
    QApplication::setApplicationName("Vellumo");
    QApplication::setApplicationVersion(VELLUMO_VERSION);
    QIcon::setFallbackThemeName(QStringLiteral("Adwaita"));
    // A text cursor that does not blink is in every picture or in none, so a
    // rerun writes the same pictures.
    QGuiApplication::styleHints()->setCursorFlashTime(0);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 3 || arguments.size() > 4) {
        QTextStream(stderr) << "usage: vellumo-helpshots LANGUAGE FOLDER [PAGES]\n";
        return 2;
    }
    HelpShots shots(arguments[1], arguments[2], arguments.value(3));
    return shots.run() ? 0 : 1;
}
