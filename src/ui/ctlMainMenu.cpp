#include "ctlMainMenu.h"

#include "SkinBackground.h"

#include "AppGlobals.h"
#include "FieldLabel.h"
#include "SlideMenuDescriptor.h"
#include "clsPopupMenu.h"

#include <QMenu>

namespace {
struct Title {
    const char* key;
    const char* fallback;
};
const Title kTitles[] = {
    {"MNU_FILE", "File"}, {"MNU_SLIDE", "Slide"}, {"MNU_HELP", "Help"}, {"MNU_EDIT", "Edit"}};
// The order on the bar: File, Edit, Slide, Help.
const int kBarOrder[] = {ctlMainMenu::FileMenu, ctlMainMenu::EditMenu, ctlMainMenu::SlideMenu,
                         ctlMainMenu::HelpMenu};

// The platform's keys where it has standard ones, else ours: some desktops
// bind no key to Save as.
QList<QKeySequence> standardOr(QKeySequence::StandardKey key, const QKeySequence& ours) {
    const QList<QKeySequence> bound = QKeySequence::keyBindings(key);
    return bound.isEmpty() ? QList<QKeySequence>{ours} : bound;
}

const QHash<int, QList<QKeySequence>>& shortcutKeys() {
    using K = QKeySequence;
    static const QHash<int, QList<QKeySequence>> keys{
        {ctlMainMenu::New, standardOr(K::New, K(Qt::CTRL | Qt::Key_N))},
        {ctlMainMenu::Open, standardOr(K::Open, K(Qt::CTRL | Qt::Key_O))},
        {ctlMainMenu::Save, standardOr(K::Save, K(Qt::CTRL | Qt::Key_S))},
        {ctlMainMenu::SaveAs, standardOr(K::SaveAs, K(Qt::CTRL | Qt::SHIFT | Qt::Key_S))},
        {ctlMainMenu::Exit, standardOr(K::Quit, K(Qt::CTRL | Qt::Key_Q))},
        {ctlMainMenu::Help, standardOr(K::HelpContents, K(Qt::Key_F1))},
        {ctlMainMenu::Undo, standardOr(K::Undo, K(Qt::CTRL | Qt::Key_Z))},
        {ctlMainMenu::Redo, standardOr(K::Redo, K(Qt::CTRL | Qt::SHIFT | Qt::Key_Z))},
        {ctlMainMenu::MoveSlideUp, {K(Qt::CTRL | Qt::SHIFT | Qt::Key_Up)}},
        {ctlMainMenu::MoveSlideDown, {K(Qt::CTRL | Qt::SHIFT | Qt::Key_Down)}},
    };
    return keys;
}
} // namespace

ctlMainMenu::ctlMainMenu(QWidget* parent) : QMenuBar(parent) {
    setObjectName(QStringLiteral("ctlMainMenu"));
    for (const int menu : kBarOrder) {
        m_menus[menu] = addMenu(QString());
        connect(m_menus[menu], &QMenu::aboutToShow, this, [this, menu] { rebuild(menu); });
        // Built once now, so a screen reader and the keyboard find the items at once.
        rebuild(menu);
    }
    for (auto key = shortcutKeys().cbegin(); key != shortcutKeys().cend(); ++key) {
        auto* action = new QAction(this);
        action->setShortcuts(key.value());
        const int number = key.key();
        // Help answers in every window of the program, about that window.
        action->setShortcutContext(number == Help ? Qt::ApplicationShortcut : Qt::WindowShortcut);
        connect(action, &QAction::triggered, this, [this, number] { emit MenuClick(number); });
        m_shortcuts.insert(number, action);
    }
    TranslateControl();
}

void ctlMainMenu::TranslateControl() {
    for (int menu = FileMenu; menu <= EditMenu; ++menu)
        m_menus[menu]->setTitle(
            FieldLabel::withMnemonic(AppGlobals::text(kTitles[menu].key, kTitles[menu].fallback)));
}

void ctlMainMenu::SetBackground(const QPixmap& picture, const QColor& colour) {
    SkinBackground::apply(this, picture, colour);
}

void ctlMainMenu::MenuEnabled(int menu, bool enabled) {
    if (menu < FileMenu || menu > EditMenu)
        return;
    m_menus[menu]->menuAction()->setEnabled(enabled);
    // A closed menu's shortcuts follow it: File's and Slide's go with their menus.
    for (auto shortcut = m_shortcuts.cbegin(); shortcut != m_shortcuts.cend(); ++shortcut)
        if ((menu == FileMenu && shortcut.key() <= Exit) ||
            (menu == SlideMenu && shortcut.key() >= MoveSlideUp) ||
            (menu == EditMenu && shortcut.key() >= Undo) ||
            (menu == HelpMenu && shortcut.key() == Help))
            shortcut.value()->setEnabled(enabled && isItemEnabled(shortcut.key()));
}

void ctlMainMenu::MenuItemEnabled(int number, bool enabled) {
    if (enabled)
        m_disabled.remove(number);
    else
        m_disabled.insert(number);
    if (QAction* shortcut = m_shortcuts.value(number))
        shortcut->setEnabled(enabled);
    scheduleRebuild();
}

void ctlMainMenu::EnableExportImport(bool enabled) {
    m_exportImport = enabled;
    scheduleRebuild();
}

// Closed menus are built anew once the caller is done, so a screen reader sees
// them as they are; never at once, as the change may come from an item of the
// very menu being rebuilt.
void ctlMainMenu::scheduleRebuild() {
    if (m_rebuildPending)
        return;
    m_rebuildPending = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_rebuildPending = false;
            for (int menu = FileMenu; menu <= EditMenu; ++menu)
                if (!m_menus[menu]->isVisible())
                    rebuild(menu);
        },
        Qt::QueuedConnection);
}

void ctlMainMenu::installShortcuts(QWidget* window) {
    for (QAction* action : std::as_const(m_shortcuts))
        window->addAction(action);
}

QString ctlMainMenu::descriptor(int menu) const {
    switch (menu) {
    case FileMenu:
        return fileDescriptor();
    case SlideMenu:
        return slideDescriptor();
    case HelpMenu:
        return item("MNU_HELP_HELP", "Help", Help) + u',' + item("MNU_HELP_ABOUT", "About", About);
    case EditMenu:
        return item("MNU_EDIT_UNDO", "Undo", Undo) + u',' + item("MNU_EDIT_REDO", "Redo", Redo);
    default:
        return QString();
    }
}

QString ctlMainMenu::item(const char* key, const char* fallback, int number) const {
    return (isItemEnabled(number) ? QString() : QStringLiteral("!")) +
           AppGlobals::text(key, fallback) + u';' + QString::number(number);
}

QString ctlMainMenu::fileDescriptor() const {
    QString text = item("MNU_FILE_NEW", "New", New) + u',' + item("MNU_FILE_OPEN", "Open", Open) +
                   ",-," + item("MNU_FILE_SAVE", "Save", Save) + u',' +
                   item("MNU_FILE_SAVEAS", "Save as", SaveAs) + ",-,";
    if (m_exportImport)
        text += item("MNU_FILE_EXPORT", "Export", Export) + u',' +
                item("MNU_FILE_IMPORT", "Import", Import) + ",-,";
    return text + item("MNU_FILE_INFO", "Info", Info) + u',' +
           item("MNU_FILE_FIT", "Fit to content class", FitToClass) + u',' +
           item("MNU_FILE_SEND", "Send to phone", SendMessage) + ",-," +
           item("MNU_FILE_SETTINGS", "Settings", Settings) + ",-," +
           m_recent.descriptor(AppGlobals::text("MNU_FILE_RECENT", "Recent")) + ",-," +
           item("MNU_FILE_EXIT", "Exit", Exit);
}

QString ctlMainMenu::slideDescriptor() const {
    return SlideMenuDescriptor::build(
               SlideCommandOffset, [this](int number) { return isItemEnabled(number); }, false) +
           u',' + item("MNU_SLIDE_MOVE_UP", "Move up", MoveSlideUp) + u',' +
           item("MNU_SLIDE_MOVE_DOWN", "Move down", MoveSlideDown) + ",-," +
           item("MNU_SLIDE_BACKGROUND", "Background", Background) + ",-," +
           item("MNU_SLIDE_PREVIEW", "Preview", Preview) + u',' +
           item("MNU_SLIDE_SHOW_PREVIEW", "Preview window", ShowPreview) + u',' +
           item("MNU_SLIDE_DOWNLOAD_PICTURE", "Send picture", DownloadPicture);
}

void ctlMainMenu::rebuild(int menu) {
    clsPopupMenu::fillMenu(*m_menus[menu], descriptor(menu));
    showShortcuts(*m_menus[menu]);
    reportChoices(*m_menus[menu]);
}

// Each item reports itself once, in a sub-menu as in the menu itself.
void ctlMainMenu::reportChoices(QMenu& menu) {
    for (QAction* action : menu.actions()) {
        if (action->menu())
            reportChoices(*action->menu());
        else if (!action->isSeparator())
            connect(action, &QAction::triggered, this, [this, action] { onTriggered(action); });
    }
}

// The keys are shown beside the captions and read out with them. The window's
// own actions carry them while the menus are closed; these answer only inside
// their open menu, so a key never means two actions at once.
void ctlMainMenu::showShortcuts(QMenu& menu) const {
    for (QAction* action : menu.actions()) {
        const QAction* shortcut = m_shortcuts.value(clsPopupMenu::commandNumber(action));
        if (shortcut && !action->menu() && !action->isSeparator()) {
            action->setShortcuts(shortcut->shortcuts());
            action->setShortcutContext(Qt::WidgetShortcut);
        }
    }
}

void ctlMainMenu::onTriggered(QAction* action) {
    const int number = clsPopupMenu::commandNumber(action);
    if (number <= 0)
        return;
    emit MenuClick(m_recent.choose(number) ? int(Recent) : number);
}
