#include "MediaBackend.h"

#include <QApplication>
#include <gtest/gtest.h>

// Every test program runs with an application object, as the program does.
int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    MediaBackend::choose();
    QApplication app(argc, argv);
    QApplication::setApplicationName("Vellumo");
    QApplication::setApplicationVersion(VELLUMO_VERSION);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
