#pragma once

#include "TempDataHome.h"
#include "frmMain.h"

#include <memory>

// A test of the whole main window, made when first asked for, on settings
// of the test's own, with what it saves read back by the command line tool.
class MainWindowFixture : public TempDataHome {
protected:
    void SetUp() override;
    void TearDown() override;

    static void setting(const char* key, const QString& value);
    frmMain& window();
    // Opens the menu from the menu bar and chooses the item whose caption the
    // key gives, by the keyboard; false when the menu or the item is missing
    // or the item is disabled.
    bool chooseMenuItem(int menu, const char* key, const char* fallback);
    // What the command line tool says of a message file.
    static QString cliInfo(const QString& file);

    std::unique_ptr<frmMain> m_window;
};
