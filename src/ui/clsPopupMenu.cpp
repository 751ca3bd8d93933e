#include "clsPopupMenu.h"

#include "PopupMenuDescriptor.h"

#include <QAction>
#include <QCursor>
#include <QMenu>
#include <QQueue>

namespace {

struct Script {
    QQueue<clsPopupMenu::Chooser> choosers;
    QList<clsPopupMenu::ShownMenu> answered;
};

Script& script() {
    static Script instance;
    return instance;
}

void addItems(QMenu& menu, const QList<PopupMenuItem>& items);

void addItem(QMenu& menu, const PopupMenuItem& item) {
    if (item.separator) {
        menu.addSeparator()->setData(item.number);
        return;
    }
    if (item.subMenu) {
        QMenu* subMenu = menu.addMenu(item.caption);
        subMenu->menuAction()->setEnabled(item.enabled);
        addItems(*subMenu, item.children);
        return;
    }
    QAction* action = menu.addAction(item.caption);
    action->setData(item.number);
    action->setEnabled(item.enabled);
    // Only checked items are checkable: styles draw an empty box for the others.
    action->setCheckable(item.checked);
    action->setChecked(item.checked);
}

void addItems(QMenu& menu, const QList<PopupMenuItem>& items) {
    for (const PopupMenuItem& item : items)
        addItem(menu, item);
}

// A menu that is filled again (each time a menu bar opens it) must not keep the
// sub-menus of the last time as hidden children.
void removeItems(QMenu& menu) {
    for (const QAction* action : menu.actions()) {
        if (QMenu* subMenu = action->menu(); subMenu && subMenu->parent() == &menu)
            delete subMenu;
    }
    menu.clear();
}

// What a user gets by picking `wanted`: nothing for a separator, a sub-menu header,
// a disabled item or anything inside a disabled sub-menu.
int choosableNumber(const QMenu& menu, const QAction* wanted) {
    for (const QAction* action : menu.actions()) {
        if (!action->isEnabled())
            continue;
        if (action == wanted)
            return action->isSeparator() || action->menu() ? 0
                                                           : clsPopupMenu::commandNumber(action);
        if (action->menu()) {
            if (const int number = choosableNumber(*action->menu(), wanted))
                return number;
        }
    }
    return 0;
}

int answerFromScript(QMenu& menu, const QString& descriptor, const QPoint& position) {
    script().answered.append({descriptor, position});
    const QAction* chosen = script().choosers.dequeue()(menu);
    return chosen ? choosableNumber(menu, chosen) : 0;
}

} // namespace

clsPopupMenu::clsPopupMenu(QWidget* owner) : m_owner(owner) {}

int clsPopupMenu::PopupString(const QString& descriptor) {
    return popupAt(descriptor, QCursor::pos());
}

int clsPopupMenu::PopupStringXY(const QString& descriptor, int x, int y) {
    return popupAt(descriptor, QPoint(x, y));
}

int clsPopupMenu::popupAt(const QString& descriptor, const QPoint& position) {
    // Other handlers run while the menu is open and may take the owner with them;
    // the guard keeps the menu from being deleted twice.
    QPointer<QMenu> menu = new QMenu(m_owner);
    fillMenu(*menu, descriptor);
    int number = 0;
    if (!script().choosers.isEmpty())
        number = answerFromScript(*menu, descriptor, position);
    else
        number = commandNumber(menu->exec(position));
    delete menu;
    return number;
}

void clsPopupMenu::fillMenu(QMenu& menu, const QString& descriptor) {
    removeItems(menu);
    addItems(menu, PopupMenuDescriptor::parse(descriptor));
}

int clsPopupMenu::commandNumber(const QAction* action) {
    return action ? action->data().toInt() : 0;
}

void clsPopupMenu::queueChoice(Chooser chooser) {
    script().choosers.enqueue(std::move(chooser));
}

QList<clsPopupMenu::ShownMenu> clsPopupMenu::answeredMenus() {
    return script().answered;
}

void clsPopupMenu::clear() {
    script().choosers.clear();
    script().answered.clear();
}
