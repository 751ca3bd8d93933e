#include "ctlDirTree.h"

#include "AppGlobals.h"
#include "DriveKind.h"

#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QStorageInfo>
#include <functional>

namespace {
// An item that has not been read yet carries one empty child, so it can be opened.
void markUnread(QTreeWidgetItem* item) {
    item->addChild(new QTreeWidgetItem);
}

bool isUnread(const QTreeWidgetItem* item) {
    return item->childCount() == 1 && item->child(0)->data(0, ctlDirTree::PathRole).isNull();
}

bool isWithin(const QString& folder, const QString& root) {
    const QString base = root.endsWith(u'/') ? root : root + u'/';
    return folder == root || folder.startsWith(base);
}
} // namespace

ctlDirTree::ctlDirTree(QWidget* parent) : QTreeWidget(parent) {
    setObjectName(QStringLiteral("ctlDirTree"));
    setHeaderHidden(true);
    setColumnCount(1);
    // Deep folders keep their names in sight in a narrow pane.
    setIndentation(12);
    setMinimumWidth(180);
    connect(this, &QTreeWidget::itemExpanded, this, [this](QTreeWidgetItem* item) {
        fillChildren(item);
        if (item->data(0, IconKeyRole).toString() == QLatin1String("folder"))
            item->setIcon(0, iconFor(QStringLiteral("open")));
    });
    connect(this, &QTreeWidget::itemCollapsed, this, [](QTreeWidgetItem* item) {
        if (item->data(0, IconKeyRole).toString() == QLatin1String("folder"))
            item->setIcon(0, iconFor(QStringLiteral("folder")));
    });
    connect(this, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
        if (!m_selecting && item && !item->data(0, PathRole).toString().isEmpty())
            emit folderChosen(item->data(0, PathRole).toString());
    });
    Refresh();
}

void ctlDirTree::TranslateControl() {
    setAccessibleName(AppGlobals::text("STR_DIR_TREE", "Folders"));
    const QString current = currentFolder();
    Refresh();
    selectFolder(current);
}

QIcon ctlDirTree::iconFor(const QString& key) {
    static const QHash<QString, QString> names{
        {"fixed", "drive-harddisk"},
        {"remove", "drive-removable-media"},
        {"remote", "folder-remote"},
        {"remotedis", "folder-remote"},
        {"cd", "drive-optical"},
        {"cddis", "drive-optical"},
        {"ram", "media-flash"},
        {"unknown", "drive-harddisk"},
        {"folder", "folder"},
        {"open", "folder-open"},
        {"home", "user-home"},
        {"desktop", "user-desktop"},
        {"documents", "folder-documents"},
        {"computer", "computer"},
    };
    const QIcon icon = QIcon::fromTheme(names.value(key), QIcon::fromTheme("folder"));
    // A drive that does not answer is drawn as the platform draws a disabled one.
    if (key.endsWith(QLatin1String("dis")))
        return QIcon(icon.pixmap(16, QIcon::Disabled));
    return icon;
}

QString ctlDirTree::kindCaption(const QString& iconKey) {
    if (iconKey == QLatin1String("remove"))
        return AppGlobals::text("STR_DIR_FLOPPY", "Removable drive");
    if (iconKey.startsWith(QLatin1String("cd")))
        return AppGlobals::text("STR_DIR_CD", "CD/DVD drive");
    if (iconKey.startsWith(QLatin1String("remote")))
        return AppGlobals::text("STR_DIR_NETWORK", "Network drive");
    if (iconKey == QLatin1String("ram"))
        return AppGlobals::text("STR_DIR_RAM", "RAM disk");
    return AppGlobals::text("STR_DIR_DRIVE", "Local drive");
}

void ctlDirTree::Refresh() {
    clear();
    const QString home = QDir::homePath();
    addFolder(nullptr, home, QDir(home).dirName(), QStringLiteral("home"));
    const QString desktop = QStandardPaths::writableLocation(QStandardPaths::DesktopLocation);
    if (QFileInfo(desktop).isDir() && desktop != home)
        addFolder(nullptr, desktop, AppGlobals::text("STR_DIR_DESKTOP", "Desktop"),
                  QStringLiteral("desktop"));
    const QString documents = QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
    if (QFileInfo(documents).isDir() && documents != home)
        addFolder(nullptr, documents, AppGlobals::text("STR_DIR_DOCUMENTS", "Documents"),
                  QStringLiteral("documents"));
    auto* computer = new QTreeWidgetItem(this);
    computer->setText(0, AppGlobals::text("STR_DIR_COMPUTER", "Computer"));
    computer->setIcon(0, iconFor(QStringLiteral("computer")));
    computer->setData(0, IconKeyRole, QStringLiteral("computer"));
    addVolumes(computer);
    computer->setExpanded(true);
}

void ctlDirTree::addVolumes(QTreeWidgetItem* computer) {
    for (const QStorageInfo& volume : QStorageInfo::mountedVolumes()) {
        if (!DriveKind::isUserVolume(volume))
            continue;
        const QString key = DriveKind::iconKey(DriveKind::factsOf(volume));
        const QString name = volume.isRoot() ? QStringLiteral("/") : volume.displayName();
        QTreeWidgetItem* item =
            addFolder(computer, volume.rootPath(), name + " (" + kindCaption(key) + u')', key);
        // A drive that does not answer is shown, but not opened.
        if (key.endsWith(QLatin1String("dis"))) {
            item->takeChildren();
            item->setDisabled(true);
        }
    }
}

QTreeWidgetItem* ctlDirTree::addFolder(QTreeWidgetItem* parent, const QString& path,
                                       const QString& caption, const QString& iconKey) {
    auto* item = parent ? new QTreeWidgetItem(parent) : new QTreeWidgetItem(this);
    item->setText(0, caption);
    item->setToolTip(0, path);
    item->setIcon(0, iconFor(iconKey));
    item->setData(0, PathRole, path);
    item->setData(0, IconKeyRole, iconKey);
    markUnread(item);
    return item;
}

// Hidden folders stay hidden, as in a file manager; a folder that cannot be
// read shows no children.
void ctlDirTree::fillChildren(QTreeWidgetItem* item) {
    if (!isUnread(item))
        return;
    delete item->takeChild(0);
    const QDir folder(item->data(0, PathRole).toString());
    const QFileInfoList children = folder.entryInfoList(
        QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name | QDir::IgnoreCase | QDir::LocaleAware);
    for (const QFileInfo& child : children)
        addFolder(item, child.absoluteFilePath(), child.fileName(), QStringLiteral("folder"));
}

QTreeWidgetItem* ctlDirTree::childFor(QTreeWidgetItem* item, const QString& folder) {
    fillChildren(item);
    QTreeWidgetItem* best = nullptr;
    int bestLength = -1;
    for (int i = 0; i < item->childCount(); ++i) {
        const QString path = item->child(i)->data(0, PathRole).toString();
        if (!path.isEmpty() && isWithin(folder, path) && path.size() > bestLength) {
            best = item->child(i);
            bestLength = int(path.size());
        }
    }
    return best;
}

void ctlDirTree::selectFolder(const QString& folder) {
    const QString wanted = QDir::cleanPath(QFileInfo(folder).absoluteFilePath());
    QTreeWidgetItem* best = nullptr;
    int bestLength = -1;
    // The deepest top entry that holds the folder: home before "/".
    std::function<void(QTreeWidgetItem*)> consider = [&](QTreeWidgetItem* item) {
        const QString path = item->data(0, PathRole).toString();
        if (!path.isEmpty() && isWithin(wanted, path) && path.size() > bestLength) {
            best = item;
            bestLength = int(path.size());
        }
        if (path.isEmpty())
            for (int i = 0; i < item->childCount(); ++i)
                consider(item->child(i));
    };
    for (int i = 0; i < topLevelItemCount(); ++i)
        consider(topLevelItem(i));
    while (best && best->data(0, PathRole).toString() != wanted) {
        QTreeWidgetItem* next = childFor(best, wanted);
        if (!next)
            break;
        best->setExpanded(true);
        best = next;
    }
    m_selecting = true;
    setCurrentItem(best);
    if (best)
        scrollToItem(best);
    m_selecting = false;
}

QString ctlDirTree::currentFolder() const {
    return currentItem() ? currentItem()->data(0, PathRole).toString() : QString();
}
