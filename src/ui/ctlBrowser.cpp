#include "ctlBrowser.h"

#include "AppGlobals.h"
#include "AppPaths.h"
#include "DialogService.h"
#include "MediaFolderModel.h"
#include "MediaListView.h"
#include "MediaThumbDelegate.h"
#include "ctlDirTree.h"

#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QScrollBar>
#include <QSplitter>
#include <QVBoxLayout>

namespace {
QString text(const char* key, const char* fallback) {
    return AppGlobals::text(key, fallback);
}

// Filters of the settings' form joined, the browser's kind first, all files last.
QString filterFor(int thumbType) {
    switch (thumbType) {
    case ctlBrowser::Sounds:
        return text("STR_BFILTER_AUDIO", "Sounds|*.wav;*.mid;*.midi;*.imy;*.mp3;*.amr");
    case ctlBrowser::Animations:
        return text("STR_BFILTER_ANIMATION", "Animations|*.gif;*.avi;*.mp4");
    default:
        // Every picture the program reads, also those only the picture library knows.
        return text("STR_BFILTER_PICTURE",
                    "Pictures|*.bmp;*.gif;*.jpg;*.jpeg;*.png;*.tif;*.tiff;*.tga;*.pcx;*.psd");
    }
}
} // namespace

ctlBrowser::ctlBrowser(QWidget* parent)
    : QWidget(parent), m_model(new MediaFolderModel(this)),
      m_delegate(new MediaThumbDelegate(this)), m_title(new QLabel), m_list(new MediaListView),
      m_split(new QSplitter(Qt::Horizontal)), m_buttons(new QWidget), m_add(new QPushButton),
      m_browse(new QPushButton), m_delete(new QPushButton) {
    setObjectName(QStringLiteral("ctlBrowser"));
    m_list->setObjectName(QStringLiteral("lstFiles"));
    m_add->setObjectName(QStringLiteral("cmdAdd"));
    m_browse->setObjectName(QStringLiteral("cmdBrowse"));
    m_delete->setObjectName(QStringLiteral("cmdDelete"));
    m_list->setModel(m_model);
    m_list->setItemDelegate(m_delegate);
    m_list->installEventFilter(this);
    buildLayout();
    connect(m_list, &QListView::activated, this, [this] { addSelected(); });
    connect(m_list->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this] { emit thumbSelected(selectedIndex(), filename()); });
    connect(m_add, &QPushButton::clicked, this, &ctlBrowser::addSelected);
    connect(m_browse, &QPushButton::clicked, this, &ctlBrowser::browse);
    connect(m_delete, &QPushButton::clicked, this, &ctlBrowser::deleteSelected);
    // A burst of changes (a copy of many files) reads the folder once.
    m_reload.setSingleShot(true);
    m_reload.setInterval(250);
    connect(&m_reload, &QTimer::timeout, this, &ctlBrowser::LoadFiles);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, &m_reload,
            qOverload<>(&QTimer::start));
    // Thumbnails scrolled into sight are made first.
    m_inSight.setSingleShot(true);
    m_inSight.setInterval(80);
    connect(&m_inSight, &QTimer::timeout, this, &ctlBrowser::prioritizeInSight);
    connect(m_list->verticalScrollBar(), &QScrollBar::valueChanged, &m_inSight,
            qOverload<>(&QTimer::start));
    TranslateControl();
}

void ctlBrowser::buildLayout() {
    auto* buttons = new QHBoxLayout(m_buttons);
    buttons->setContentsMargins(0, 0, 0, 0);
    for (QPushButton* button : {m_add, m_browse, m_delete})
        buttons->addWidget(button);
    buttons->addStretch();
    m_split->addWidget(m_list);
    m_split->setChildrenCollapsible(false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addWidget(m_title);
    layout->addWidget(m_split, 1);
    layout->addWidget(m_buttons);
    m_title->hide();
}

void ctlBrowser::TranslateControl() {
    m_add->setText(text("BTN_ADD", "&Add"));
    m_browse->setText(text("BTN_BROWSE", "&Browse..."));
    m_delete->setText(text("BTN_DELETE", "&Delete"));
    m_add->setToolTip(
        text("STR_CLICK_TO_ADD", "Select an item and click Add to put it on the current slide."));
    static_cast<MediaListView*>(m_list)->setEmptyText(
        text("STR_BROWSER_EMPTY", "No files here. Click Browse to pick one from elsewhere."));
    setCaption(m_caption);
    if (m_tree) {
        m_tree->TranslateControl();
        m_split->handle(1)->setAccessibleName(
            text("STR_BROWSER_SPLIT", "Width of the folder tree"));
    }
}

void ctlBrowser::SetBrowserThumbType(int thumbType) {
    m_model->setThumbType(thumbType);
}

int ctlBrowser::thumbType() const {
    return m_model->thumbType();
}

void ctlBrowser::SetPictureStretchMode(int mode) {
    m_delegate->setStretchMode(mode);
    m_list->viewport()->update();
}

void ctlBrowser::setFiles(const QString& patterns) {
    m_model->setPatterns(patterns);
    LoadFiles();
}

QString ctlBrowser::Files() const {
    return m_model->patterns();
}

void ctlBrowser::setIcons(const QString& icons) {
    m_model->setIcons(icons);
    m_list->viewport()->update();
}

void ctlBrowser::SetBrowserDefaultDir(const QString& folder) {
    m_defaultFolder = folder;
    if (m_path.isEmpty())
        setPath(folder);
}

QString ctlBrowser::GetBrowserDir() const {
    return m_path.isEmpty() ? m_defaultFolder : m_path;
}

void ctlBrowser::setPath(const QString& folder) {
    m_path = AppPaths::programRelative(folder);
    if (m_tree)
        m_tree->selectFolder(m_path);
    LoadFiles();
}

void ctlBrowser::LoadFiles() {
    const QString chosen = filename();
    m_model->load(GetBrowserDir());
    watchFolder();
    const QModelIndexList same =
        m_model->match(m_model->index(0), Qt::DisplayRole, chosen, 1, Qt::MatchExactly);
    if (!chosen.isEmpty() && !same.isEmpty())
        m_list->setCurrentIndex(same.first());
}

void ctlBrowser::prioritizeInSight() {
    const QRect sight = m_list->viewport()->rect();
    const QModelIndex first = m_list->indexAt(sight.topLeft() + QPoint(4, 4));
    if (!first.isValid())
        return;
    int last = first.row();
    while (last + 1 < m_model->rowCount() &&
           m_list->visualRect(m_model->index(last + 1)).top() < sight.bottom())
        ++last;
    m_model->prioritize(first.row(), last);
}

void ctlBrowser::watchFolder() {
    if (!m_watcher.directories().isEmpty())
        m_watcher.removePaths(m_watcher.directories());
    if (QFileInfo(GetBrowserDir()).isDir())
        m_watcher.addPath(GetBrowserDir());
}

void ctlBrowser::UseExternalBrowser(bool on) {
    if (on == externalBrowser())
        return;
    if (!on) {
        delete m_tree;
        m_tree = nullptr;
        return;
    }
    m_tree = new ctlDirTree;
    m_split->insertWidget(0, m_tree);
    m_split->setStretchFactor(0, 2);
    m_split->setStretchFactor(1, 3);
    TranslateControl();
    m_tree->selectFolder(GetBrowserDir());
    connect(m_tree, &ctlDirTree::folderChosen, this, [this](const QString& folder) {
        m_path = folder;
        LoadFiles();
    });
}

void ctlBrowser::SetControlBackColor(const QColor& colour) {
    QPalette palette = m_list->palette();
    palette.setColor(QPalette::Base, colour);
    m_list->setPalette(palette);
}

void ctlBrowser::setCaption(const QString& caption) {
    m_caption = caption;
    m_title->setText(caption);
    m_list->setAccessibleName(caption);
    setAccessibleName(caption);
}

void ctlBrowser::setCaptionVisible(bool visible) {
    m_title->setVisible(visible);
}

void ctlBrowser::setButtonsVisible(bool visible) {
    m_buttons->setVisible(visible);
}

void ctlBrowser::setControlsEnabled(bool enabled) {
    for (QWidget* control : {static_cast<QWidget*>(m_list), static_cast<QWidget*>(m_buttons)})
        control->setEnabled(enabled);
}

void ctlBrowser::setThumbSize(QSize size) {
    m_delegate->setThumbSize(size);
    m_model->setThumbnailEdge(std::max(size.width(), size.height()));
    m_list->doItemsLayout();
}

void ctlBrowser::addButton(QPushButton* button) {
    auto* row = static_cast<QHBoxLayout*>(m_buttons->layout());
    row->insertWidget(row->count() - 1, button);
}

QString ctlBrowser::filename() const {
    const QModelIndex current = m_list->currentIndex();
    return current.isValid() ? current.data().toString() : QString();
}

int ctlBrowser::selectedIndex() const {
    const QModelIndex current = m_list->currentIndex();
    return current.isValid() ? current.row() + 1 : 0;
}

void ctlBrowser::selectIndex(int index) {
    m_list->setCurrentIndex(m_model->index(index - 1));
}

void ctlBrowser::addSelected() {
    if (selectedIndex() == 0)
        return inform(text("STR_BROWSER_ADD_MSG", "Select a file first, then click Add."),
                      text("STR_BROWSER_ADD_CAP", "Add file"));
    emit addFile(AppPaths::withSlash(m_model->folder()), filename());
}

void ctlBrowser::browse() {
    DialogService::FileRequest request;
    request.title = text("STR_DLG_BROWSE_FILE", "Choose a file for the slide");
    request.folder = GetBrowserDir();
    request.filter = DialogService::qtFilter(filterFor(thumbType()) + u'|' +
                                             text("STR_BFILTER_ALL", "All files|*.*"));
    const QString chosen = DialogService::fileDialog(this, request);
    if (chosen.isEmpty())
        emit browseCancelled();
    else
        emit fileBrowsed(chosen);
}

void ctlBrowser::deleteSelected() {
    const QString title = text("STR_BROWSER_DELETE_CAP", "Delete file");
    if (selectedIndex() == 0)
        return inform(text("STR_BROWSER_DELETE_MSG", "Select a file first, then click Delete."),
                      title);
    const QString path = AppPaths::withSlash(m_model->folder()) + filename();
    if (DialogService::messageBox(
            this, AppGlobals::text("STR_BROWSER_TRASH_ASK", "Move %0 to the trash?", {filename()}),
            title, QMessageBox::Yes | QMessageBox::No, QMessageBox::Question) != QMessageBox::Yes)
        return;
    if (!QFile::moveToTrash(path))
        return inform(AppGlobals::text("STR_BROWSER_TRASH_FAILED",
                                       "%0 could not be moved to the trash.", {filename()}),
                      title);
    LoadFiles();
}

bool ctlBrowser::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_list && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Delete) {
        deleteSelected();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void ctlBrowser::inform(const QString& message, const QString& title) {
    DialogService::messageBox(this, message, title, QMessageBox::Ok, QMessageBox::Information);
}
