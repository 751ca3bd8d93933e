#pragma once

#include <QList>
#include <QPoint>
#include <QPointer>
#include <QString>

#include <functional>

class QAction;
class QMenu;
class QWidget;
struct PopupMenuItem;

// Shows a menu written as a descriptor text (see PopupMenuDescriptor) and reports
// the command number of the chosen item, or 0 when the menu was dismissed. The menu
// is built afresh for each call and destroyed afterwards, so it always shows the
// state the caller described.
class clsPopupMenu {
public:
    // Tests answer the next menu ahead of time: the chooser gets the menu exactly as
    // it would have been shown and returns the action a user picks (nullptr to
    // dismiss it). Only what a user could really choose is reported.
    using Chooser = std::function<QAction*(QMenu& menu)>;
    struct ShownMenu {
        QString descriptor;
        QPoint position;
    };

    explicit clsPopupMenu(QWidget* owner = nullptr);

    // At the mouse cursor.
    int PopupString(const QString& descriptor);
    // At the screen point (x, y) in pixels.
    int PopupStringXY(const QString& descriptor, int x, int y);

    // Replaces the menu's actions with the descriptor's items; each action's data is
    // its command number. Menus that live on (a menu bar's) fill themselves here.
    static void fillMenu(QMenu& menu, const QString& descriptor);
    // The command an action reports when triggered: 0 for none.
    static int commandNumber(const QAction* action);

    static void queueChoice(Chooser chooser);
    // The menus answered from the queue, oldest first.
    static QList<ShownMenu> answeredMenus();
    static void clear();

private:
    int popupAt(const QString& descriptor, const QPoint& position);

    QPointer<QWidget> m_owner;
};
