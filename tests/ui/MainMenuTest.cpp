#include "QtPrinters.h"
#include "clsPopupMenu.h"
#include "ctlMainMenu.h"

#include <QMainWindow>
#include <QMenu>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace {
class MainMenuTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_window.setMenuBar(m_menu);
        m_menu->installShortcuts(&m_window);
        m_window.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_window));
    }

    // The menu as it is built when the user opens it.
    QMenu& opened(int title) {
        QMenu* menu = m_menu->actions().at(title)->menu();
        emit menu->aboutToShow();
        return *menu;
    }
    static QAction* find(QMenu& menu, const QString& caption) {
        for (QAction* action : menu.actions())
            if (action->text().section(u'\t', 0, 0) == caption)
                return action;
        return nullptr;
    }

    QMainWindow m_window;
    ctlMainMenu* m_menu = new ctlMainMenu;
};
} // namespace

TEST_F(MainMenuTest, TheFileMenuOffersExportAndImportOnlyWhenAllowed) {
    EXPECT_EQ(m_menu->descriptor(ctlMainMenu::FileMenu),
              "New;1,Open;2,-,Save;3,Save as;4,-,Info;7,Fit to content class;34,Send to "
              "phone;33,-,Settings;8,-,!Recent;0,-,Exit;10");
    m_menu->EnableExportImport(true);
    m_menu->MenuItemEnabled(ctlMainMenu::Save, false);
    m_menu->recentFiles().AddToRecentFilesList("/m/card.mms");
    EXPECT_EQ(m_menu->descriptor(ctlMainMenu::FileMenu),
              "New;1,Open;2,-,!Save;3,Save as;4,-,Export;6,Import;5,-,Info;7,Fit to content "
              "class;34,Send to "
              "phone;33,-,Settings;8,-,"
              "Recent;0|/m/card.mms;265,-,Exit;10");
    EXPECT_TRUE(m_menu->descriptor(ctlMainMenu::SlideMenu)
                    .startsWith("Add;11,Insert;0|Before;13|After;14,Duplicate;0|Before;16|"
                                "After;17,Delete;0|Slide;19|-|Image;20|Sound;21|Text;22,"
                                "Move up;31,Move down;32,-,"));
}

TEST_F(MainMenuTest, ItemsReportTheirNumbersAndRecentFilesTheirPath) {
    QSignalSpy clicks(m_menu, &ctlMainMenu::MenuClick);
    m_menu->recentFiles().SetRecentFilesList({"/m/one.mms", "/m/two.mms"});
    QMenu& file = opened(0);
    find(file, "Open")->trigger();
    QAction* recent = find(file, "Recent");
    ASSERT_TRUE(recent && recent->menu());
    find(*recent->menu(), "/m/two.mms")->trigger();
    QMenu& slide = opened(2);
    find(*find(slide, "Duplicate")->menu(), "After")->trigger();
    ASSERT_EQ(clicks.count(), 3);
    EXPECT_EQ(clicks[0][0].toInt(), int(ctlMainMenu::Open));
    EXPECT_EQ(clicks[1][0].toInt(), int(ctlMainMenu::Recent));
    EXPECT_EQ(m_menu->GetRecentSelectedFile(), "/m/two.mms");
    EXPECT_EQ(clicks[2][0].toInt(), int(ctlMainMenu::DuplicateAfter));
}

TEST_F(MainMenuTest, ShortcutsWorkWithTheMenusClosedAndFollowTheirItems) {
    QSignalSpy clicks(m_menu, &ctlMainMenu::MenuClick);
    QAction* save = find(opened(0), "Save");
    EXPECT_EQ(save->text(), "Save");
    EXPECT_EQ(save->shortcut(), QKeySequence(QKeySequence::Save)) << "shown in the menu";
    QTest::keyClick(&m_window, Qt::Key_S, Qt::ControlModifier);
    QTest::keyClick(&m_window, Qt::Key_Z, Qt::ControlModifier);
    m_menu->MenuItemEnabled(ctlMainMenu::Undo, false);
    QTest::keyClick(&m_window, Qt::Key_Z, Qt::ControlModifier);
    m_menu->MenuEnabled(ctlMainMenu::FileMenu, false);
    QTest::keyClick(&m_window, Qt::Key_S, Qt::ControlModifier);
    ASSERT_EQ(clicks.count(), 2);
    EXPECT_EQ(clicks[0][0].toInt(), int(ctlMainMenu::Save));
    EXPECT_EQ(clicks[1][0].toInt(), int(ctlMainMenu::Undo));
    EXPECT_FALSE(find(opened(1), "Undo")->isEnabled());
}

TEST_F(MainMenuTest, ClosedMenusFollowTheStateWithoutBeingOpened) {
    m_menu->MenuItemEnabled(ctlMainMenu::Info, false);
    QMenu* file = m_menu->actions().at(0)->menu();
    QCoreApplication::processEvents();
    QAction* info = find(*file, "Info");
    ASSERT_NE(info, nullptr);
    EXPECT_FALSE(info->isEnabled()) << "a screen reader sees the menu as it is";
}

TEST_F(MainMenuTest, EveryFileAndEditCommandHasAKeyOnThisDesktop) {
    for (const char* caption : {"New", "Open", "Save", "Save as", "Exit"})
        EXPECT_FALSE(find(opened(0), caption)->shortcut().isEmpty()) << caption;
    for (const char* caption : {"Undo", "Redo"})
        EXPECT_FALSE(find(opened(1), caption)->shortcut().isEmpty()) << caption;
}
