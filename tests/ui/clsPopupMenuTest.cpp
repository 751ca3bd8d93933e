#include "clsPopupMenu.h"

#include <QAction>
#include <QApplication>
#include <QCursor>
#include <QMenu>
#include <QPointer>
#include <QTest>
#include <QTimer>

#include <functional>

#include <gtest/gtest.h>

namespace {

const QString kStripMenu = QStringLiteral("&Add;1,Insert;0|&Before;3|After;4,-,"
                                          "!Delete;0|Slide;9,#&Loop;5,!&Gone;6,&Off;7");

using Step = std::function<void(QMenu& popup)>;

Step key(Qt::Key pressed) {
    return [pressed](QMenu& popup) { QTest::keyClick(&popup, pressed); };
}

Step rightClick(const QString& caption) {
    return [caption](QMenu& popup) {
        for (QAction* action : popup.actions()) {
            if (action->text() == caption)
                QTest::mouseClick(&popup, Qt::RightButton, {},
                                  popup.actionGeometry(action).center());
        }
    };
}

// Plays the steps into whichever popup is open, one per event-loop turn, as a user
// would, while `show` runs the real menu. A menu still open long after the last
// step is closed, so that a test fails rather than hangs.
class PopupDriver {
public:
    explicit PopupDriver(QList<Step> steps) : m_steps(std::move(steps)) {}

    int run(const std::function<int()>& show) {
        QTimer timer;
        timer.setInterval(20);
        QObject::connect(&timer, &QTimer::timeout, [this] { tick(); });
        timer.start();
        return show();
    }
    // Where the first popup appeared, in screen pixels.
    QPoint shownAt() const { return m_shownAt; }
    bool sawPopup() const { return m_sawPopup; }
    bool timedOut() const { return m_timedOut; }

private:
    void tick() {
        auto* popup = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        if (!popup)
            return;
        if (!m_sawPopup)
            m_shownAt = popup->pos();
        m_sawPopup = true;
        if (!m_steps.isEmpty()) {
            m_steps.takeFirst()(*popup);
        } else if (++m_idleTicks > 50) {
            m_timedOut = true;
            popup->close();
        }
    }

    QList<Step> m_steps;
    QPoint m_shownAt;
    bool m_sawPopup = false;
    bool m_timedOut = false;
    int m_idleTicks = 0;
};

int chooseWith(const QString& descriptor, QList<Step> steps) {
    PopupDriver driver(std::move(steps));
    clsPopupMenu menu;
    const int number = driver.run([&] { return menu.PopupStringXY(descriptor, 100, 80); });
    EXPECT_TRUE(driver.sawPopup());
    EXPECT_FALSE(driver.timedOut()) << "the keys should have closed the menu";
    return number;
}

QAction* actionNamed(QMenu& menu, const QString& caption) {
    for (QAction* action : menu.actions()) {
        if (action->text() == caption)
            return action;
        if (action->menu()) {
            if (QAction* found = actionNamed(*action->menu(), caption))
                return found;
        }
    }
    return nullptr;
}

clsPopupMenu::Chooser choose(const QString& caption) {
    return [caption](QMenu& menu) { return actionNamed(menu, caption); };
}

int openMenus() {
    int count = 0;
    for (QWidget* widget : QApplication::allWidgets())
        count += qobject_cast<QMenu*>(widget) ? 1 : 0;
    return count;
}

class PopupMenuTest : public ::testing::Test {
protected:
    void TearDown() override { clsPopupMenu::clear(); }
};

} // namespace

TEST_F(PopupMenuTest, TheBuiltMenuCarriesTextStateAndNumbers) {
    QMenu menu;
    clsPopupMenu::fillMenu(menu, kStripMenu);
    const QList<QAction*> actions = menu.actions();
    ASSERT_EQ(actions.size(), 7);

    EXPECT_EQ(actions[0]->text(), "&Add");
    EXPECT_EQ(clsPopupMenu::commandNumber(actions[0]), 1);
    EXPECT_TRUE(actions[0]->isEnabled());
    EXPECT_FALSE(actions[0]->isCheckable());

    ASSERT_NE(actions[1]->menu(), nullptr);
    EXPECT_EQ(actions[1]->text(), "Insert");
    EXPECT_TRUE(actions[1]->isEnabled());
    EXPECT_EQ(clsPopupMenu::commandNumber(actions[1]), 0);
    const QList<QAction*> insert = actions[1]->menu()->actions();
    ASSERT_EQ(insert.size(), 2);
    EXPECT_EQ(insert[0]->text(), "&Before");
    EXPECT_EQ(insert[0]->data().toInt(), 3);
    EXPECT_EQ(insert[1]->text(), "After");
    EXPECT_EQ(insert[1]->data().toInt(), 4);

    EXPECT_TRUE(actions[2]->isSeparator());

    ASSERT_NE(actions[3]->menu(), nullptr);
    EXPECT_EQ(actions[3]->text(), "Delete");
    EXPECT_FALSE(actions[3]->isEnabled());
    ASSERT_EQ(actions[3]->menu()->actions().size(), 1);
    EXPECT_EQ(actions[3]->menu()->actions()[0]->data().toInt(), 9);

    EXPECT_EQ(actions[4]->text(), "&Loop");
    EXPECT_TRUE(actions[4]->isCheckable());
    EXPECT_TRUE(actions[4]->isChecked());
    EXPECT_EQ(actions[4]->data().toInt(), 5);

    EXPECT_EQ(actions[5]->text(), "&Gone");
    EXPECT_FALSE(actions[5]->isEnabled());
    EXPECT_FALSE(actions[5]->isChecked());

    EXPECT_EQ(actions[6]->text(), "&Off");
    EXPECT_TRUE(actions[6]->isEnabled());
    EXPECT_FALSE(actions[6]->isChecked());
}

TEST_F(PopupMenuTest, FillingAgainReplacesEverythingIncludingSubMenus) {
    QMenu menu;
    clsPopupMenu::fillMenu(menu, kStripMenu);
    clsPopupMenu::fillMenu(menu, "One;1,Sub;0|Two;2");
    ASSERT_EQ(menu.actions().size(), 2);
    EXPECT_EQ(menu.actions()[0]->text(), "One");
    EXPECT_EQ(menu.findChildren<QMenu*>().size(), 1) << "the old sub-menus are gone";
    clsPopupMenu::fillMenu(menu, "");
    EXPECT_TRUE(menu.actions().isEmpty());
    EXPECT_TRUE(menu.findChildren<QMenu*>().isEmpty());
}

TEST_F(PopupMenuTest, ChoosingByKeyboardReportsTheItemsNumber) {
    EXPECT_EQ(chooseWith(kStripMenu, {key(Qt::Key_Down), key(Qt::Key_Return)}), 1);
    EXPECT_EQ(chooseWith(kStripMenu, {key(Qt::Key_L)}), 5) << "by its mnemonic";
    EXPECT_EQ(chooseWith(kStripMenu, {key(Qt::Key_Up), key(Qt::Key_Return)}), 7)
        << "the last item, from below";
}

TEST_F(PopupMenuTest, ItemsOfASubMenuAreReachedByKeyboard) {
    // A sub-menu opened from the keyboard starts on its first item.
    EXPECT_EQ(chooseWith(kStripMenu, {key(Qt::Key_Down), key(Qt::Key_Down), key(Qt::Key_Right),
                                      key(Qt::Key_Return)}),
              3);
    EXPECT_EQ(chooseWith(kStripMenu, {key(Qt::Key_Down), key(Qt::Key_Down), key(Qt::Key_Right),
                                      key(Qt::Key_Down), key(Qt::Key_Return)}),
              4);
}

TEST_F(PopupMenuTest, DisabledItemsCannotBeChosenByTheirMnemonic) {
    EXPECT_EQ(chooseWith(kStripMenu, {key(Qt::Key_G), key(Qt::Key_Escape)}), 0);
}

TEST_F(PopupMenuTest, DismissingTheMenuReportsZero) {
    EXPECT_EQ(chooseWith(kStripMenu, {key(Qt::Key_Escape)}), 0);
    EXPECT_EQ(chooseWith(kStripMenu, {key(Qt::Key_Down), key(Qt::Key_Escape)}), 0);
}

TEST_F(PopupMenuTest, TheRightMouseButtonChoosesToo) {
    EXPECT_EQ(chooseWith(kStripMenu, {rightClick("&Loop")}), 5);
}

TEST_F(PopupMenuTest, TheMenuOpensAtThePointOrAtTheCursorAndIsGoneAfterwards) {
    const int menusBefore = openMenus();
    clsPopupMenu menu;

    PopupDriver atPoint({key(Qt::Key_Escape)});
    atPoint.run([&] { return menu.PopupStringXY(kStripMenu, 120, 90); });
    EXPECT_EQ(atPoint.shownAt(), QPoint(120, 90));

    QCursor::setPos(200, 150);
    PopupDriver atCursor({key(Qt::Key_Down), key(Qt::Key_Return)});
    EXPECT_EQ(atCursor.run([&] { return menu.PopupString(kStripMenu); }), 1);
    EXPECT_EQ(atCursor.shownAt(), QCursor::pos());

    EXPECT_EQ(openMenus(), menusBefore);
}

TEST_F(PopupMenuTest, AnEmptyDescriptorReportsZero) {
    PopupDriver driver({key(Qt::Key_Escape)});
    clsPopupMenu menu;
    EXPECT_EQ(driver.run([&] { return menu.PopupStringXY("", 10, 10); }), 0);
    EXPECT_FALSE(driver.timedOut());
}

TEST_F(PopupMenuTest, AnOwnerThatGoesAwayWhileTheMenuIsOpenDoesNotTakeItTwice) {
    auto* owner = new QWidget;
    clsPopupMenu menu(owner);
    QPointer<QWidget> watched(owner);
    PopupDriver driver({[owner](QMenu&) { delete owner; }});
    EXPECT_EQ(driver.run([&] { return menu.PopupStringXY(kStripMenu, 50, 50); }), 0);
    EXPECT_TRUE(watched.isNull());
}

TEST_F(PopupMenuTest, TestsCanAnswerTheNextMenuAheadOfTime) {
    auto* owner = new QWidget;
    clsPopupMenu menu(owner);
    clsPopupMenu::queueChoice(choose("After"));
    clsPopupMenu::queueChoice([](QMenu&) { return nullptr; });
    EXPECT_EQ(menu.PopupStringXY(kStripMenu, 30, 40), 4);
    EXPECT_EQ(menu.PopupString("A;8"), 0);

    const QList<clsPopupMenu::ShownMenu> shown = clsPopupMenu::answeredMenus();
    ASSERT_EQ(shown.size(), 2);
    EXPECT_EQ(shown[0].descriptor, kStripMenu);
    EXPECT_EQ(shown[0].position, QPoint(30, 40));
    EXPECT_EQ(shown[1].descriptor, "A;8");
    delete owner;
}

TEST_F(PopupMenuTest, AnsweredMenusReportOnlyWhatAUserCouldChoose) {
    clsPopupMenu menu;
    for (const QString& caption : QStringList{"&Gone", "Slide", "Insert", ""})
        clsPopupMenu::queueChoice(choose(caption));
    clsPopupMenu::queueChoice([](QMenu& popup) { return popup.actions().at(2); });
    EXPECT_EQ(menu.PopupString(kStripMenu), 0) << "a disabled item";
    EXPECT_EQ(menu.PopupString(kStripMenu), 0) << "an item of a disabled sub-menu";
    EXPECT_EQ(menu.PopupString(kStripMenu), 0) << "a sub-menu header";
    EXPECT_EQ(menu.PopupString(kStripMenu), 0) << "nothing of that name";
    EXPECT_EQ(menu.PopupString(kStripMenu), 0) << "a separator";
    QAction stranger("&Add");
    stranger.setData(1);
    clsPopupMenu::queueChoice([&](QMenu&) { return &stranger; });
    EXPECT_EQ(menu.PopupString(kStripMenu), 0) << "an action not in the menu";
}
