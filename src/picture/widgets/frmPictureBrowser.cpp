#include "frmPictureBrowser.h"

#include "AppError.h"
#include "AppGlobals.h"
#include "AppPaths.h"
#include "DialogService.h"
#include "FieldLabel.h"
#include "FreeImagePicture.h"
#include "clsPropertiesXML.h"
#include "ctlPicScroll.h"

#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <QtConcurrent>

namespace {
const char* const FilesKey = "PictureBrowserFiles";
const char* const FolderKey = "SavedPictureBrowserPath";
const char* const DefaultFiles = "*.bmp;*.gif;*jpg;*.png;*.tif;*.psd;*.tga;*.pcx";

// The setting's ";"-separated patterns, as the folder's name filters (which
// match names in any case).
QStringList filePatterns() {
    QStringList patterns;
    const QString setting = AppGlobals::setting("preferences", FilesKey, DefaultFiles);
    for (const QString& pattern : setting.split(u';', Qt::SkipEmptyParts))
        patterns << pattern.trimmed();
    return patterns;
}
} // namespace

frmPictureBrowser::frmPictureBrowser(QWidget* parent)
    : QDialog(parent), txtFolder(new QLineEdit(this)),
      lblFolder(FieldLabel::create(txtFolder, this)), cmdBrowse(new QPushButton(this)),
      lstFiles(new QListWidget(this)), lblFiles(FieldLabel::create(lstFiles, this)),
      m_viewArea(new QStackedWidget(this)), picView(new ctlPicScroll(m_viewArea)),
      lblMessage(new QLabel(m_viewArea)), lblInfo(new QLabel(this)),
      cmdRotateLeft(addButton("cmdRotateLeft", "object-rotate-left", Qt::CTRL | Qt::Key_L)),
      cmdRotateRight(addButton("cmdRotateRight", "object-rotate-right", Qt::CTRL | Qt::Key_R)),
      cmdFlip(addButton("cmdFlip", "object-flip-horizontal", Qt::CTRL | Qt::Key_M)),
      cmdZoomIn(addButton("cmdZoomIn", "zoom-in", QKeySequence::ZoomIn)),
      cmdZoomOut(addButton("cmdZoomOut", "zoom-out", QKeySequence::ZoomOut)),
      cmdRealSize(addButton("cmdRealSize", "zoom-original", Qt::CTRL | Qt::Key_0)),
      cmdFit(addButton("cmdFit", "zoom-fit-best", Qt::CTRL | Qt::Key_F)),
      cmdCrop(addButton("cmdCrop", "edit-cut", Qt::CTRL | Qt::Key_K)),
      cmdAdd(addButton("cmdAdd", "list-add", Qt::CTRL | Qt::Key_Return)),
      cmdClose(addButton("cmdClose", "window-close", QKeySequence())) {
    m_reader.setMaxThreadCount(1);
    setObjectName("frmPictureBrowser");
    txtFolder->setObjectName("txtFolder");
    cmdBrowse->setObjectName("cmdBrowse");
    lstFiles->setObjectName("lstFiles");
    picView->setObjectName("picView");
    lblMessage->setObjectName("lblMessage");
    lblInfo->setObjectName("lblInfo");
    lblMessage->setAlignment(Qt::AlignCenter);
    lblMessage->setWordWrap(true);
    lblMessage->setMargin(12);
    lblMessage->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    lblMessage->setFocusPolicy(Qt::StrongFocus);
    cmdCrop->setCheckable(true);
    cmdAdd->setDefault(true);
    buildLayout();
    connectCommands();
    TranslateControl();
    enablePictureCommands(false);
    const QString saved = AppGlobals::setting("preferences", FolderKey, QString());
    setFolder(saved.isEmpty() ? AppPaths::documentsFolder() : AppPaths::programRelative(saved));
}

QPushButton* frmPictureBrowser::addButton(const char* name, const char* icon,
                                          const QKeySequence& keys) {
    auto* button = new QPushButton(QIcon::fromTheme(icon), QString(), this);
    button->setObjectName(name);
    if (!keys.isEmpty()) {
        auto* shortcut = new QShortcut(keys, button);
        connect(shortcut, &QShortcut::activated, button, &QPushButton::click);
    }
    return button;
}

void frmPictureBrowser::buildLayout() {
    auto* folderRow = new QHBoxLayout;
    folderRow->addWidget(lblFolder);
    folderRow->addWidget(txtFolder, 1);
    folderRow->addWidget(cmdBrowse);

    auto* listSide = new QWidget(this);
    auto* listLayout = new QVBoxLayout(listSide);
    listLayout->setContentsMargins(0, 0, 0, 0);
    listLayout->addWidget(lblFiles);
    listLayout->addWidget(lstFiles, 1);

    m_viewArea->addWidget(picView);
    m_viewArea->addWidget(lblMessage);
    auto* viewSide = new QWidget(this);
    auto* viewLayout = new QVBoxLayout(viewSide);
    viewLayout->setContentsMargins(0, 0, 0, 0);
    viewLayout->addWidget(m_viewArea, 1);
    viewLayout->addWidget(lblInfo);
    auto* splitter = new QSplitter(this);
    splitter->addWidget(listSide);
    splitter->addWidget(viewSide);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({200, 520});

    auto* commands = new QVBoxLayout;
    for (QPushButton* button : {cmdRotateLeft, cmdRotateRight, cmdFlip})
        commands->addWidget(button);
    commands->addSpacing(12);
    for (QPushButton* button : {cmdZoomIn, cmdZoomOut, cmdRealSize, cmdFit})
        commands->addWidget(button);
    commands->addSpacing(12);
    commands->addWidget(cmdCrop);
    commands->addStretch(1);
    commands->addWidget(cmdAdd);
    commands->addWidget(cmdClose);

    auto* main = new QGridLayout(this);
    main->addLayout(folderRow, 0, 0, 1, 2);
    main->addWidget(splitter, 1, 0);
    main->addLayout(commands, 1, 1);
    main->setColumnStretch(0, 1);
    resize(900, 600);
}

void frmPictureBrowser::connectCommands() {
    connect(cmdBrowse, &QPushButton::clicked, this, &frmPictureBrowser::browseFolder);
    connect(txtFolder, &QLineEdit::returnPressed, this, [this] { setFolder(txtFolder->text()); });
    connect(lstFiles, &QListWidget::currentItemChanged, this, &frmPictureBrowser::loadSelected);
    connect(&m_loading, &QFutureWatcher<Loaded>::finished, this, &frmPictureBrowser::pictureLoaded);
    connect(cmdRotateLeft, &QPushButton::clicked, picView, [this] { picView->Rotate(false); });
    connect(cmdRotateRight, &QPushButton::clicked, picView, [this] { picView->Rotate(true); });
    connect(cmdFlip, &QPushButton::clicked, picView, [this] { picView->Flip(true); });
    connect(cmdZoomIn, &QPushButton::clicked, picView, &ctlPicScroll::ZoomIn);
    connect(cmdZoomOut, &QPushButton::clicked, picView, &ctlPicScroll::ZoomOut);
    connect(cmdRealSize, &QPushButton::clicked, picView, &ctlPicScroll::ZoomReal);
    connect(cmdFit, &QPushButton::clicked, picView, &ctlPicScroll::FitAndMaintainRatio);
    connect(cmdCrop, &QPushButton::toggled, picView, &ctlPicScroll::setCropping);
    connect(cmdAdd, &QPushButton::clicked, this, &frmPictureBrowser::addToSlide);
    connect(picView, &ctlPicScroll::pictureChanged, this, &frmPictureBrowser::showPictureInfo);
    connect(picView, &ctlPicScroll::zoomChanged, this, &frmPictureBrowser::showPictureInfo);
    connect(cmdClose, &QPushButton::clicked, this, &QDialog::reject);
}

void frmPictureBrowser::TranslateControl() {
    setWindowTitle(AppGlobals::text("STR_PB_TITLE", "Picture browser"));
    FieldLabel::setCaption(lblFolder, AppGlobals::text("STR_PB_FOLDER", "Fol&der"));
    FieldLabel::setCaption(lblFiles, AppGlobals::text("STR_PB_FILES", "&Pictures"));
    picView->setAccessibleName(AppGlobals::text("STR_PB_VIEW", "Picture"));
    lblMessage->setAccessibleName(AppGlobals::text("STR_PB_MESSAGE", "Message"));
    describe(cmdBrowse, AppGlobals::text("STR_PB_BROWSE", "&Browse…"));
    describe(cmdRotateLeft, AppGlobals::text("STR_PB_ROTATE_LEFT", "Rotate &left"));
    describe(cmdRotateRight, AppGlobals::text("STR_PB_ROTATE_RIGHT", "Rotate &right"));
    describe(cmdFlip, AppGlobals::text("STR_PB_FLIP", "&Flip"));
    describe(cmdZoomIn, AppGlobals::text("STR_PB_ZOOM_IN", "Zoom &in"));
    describe(cmdZoomOut, AppGlobals::text("STR_PB_ZOOM_OUT", "Zoom &out"));
    describe(cmdRealSize, AppGlobals::text("STR_PB_REAL_SIZE", "&100 %"));
    describe(cmdFit, AppGlobals::text("STR_PB_FIT", "Fi&t"));
    describe(cmdCrop, AppGlobals::text("STR_PB_CROP", "&Crop"));
    describe(cmdAdd, AppGlobals::text("STR_PB_ADD", "&Add to slide"));
    describe(cmdClose, AppGlobals::text("STR_PB_CLOSE", "Clo&se"));
    cmdClose->setToolTip(cmdClose->accessibleName() + " (" +
                         QKeySequence(Qt::Key_Escape).toString(QKeySequence::NativeText) + u')');
}

// A button is named for screen readers by its caption, and its tool tip
// tells its key.
void frmPictureBrowser::describe(QPushButton* button, const QString& text) {
    const QString name = QString(text).remove(u'&');
    button->setText(text);
    button->setAccessibleName(name);
    const auto* shortcut = button->findChild<QShortcut*>();
    const QString keys = shortcut ? shortcut->key().toString(QKeySequence::NativeText) : QString();
    button->setToolTip(keys.isEmpty() ? name : name + " (" + keys + u')');
}

void frmPictureBrowser::setSlideSize(QSize size) {
    picView->setCropAspect(size);
}

void frmPictureBrowser::setFolder(const QString& folder) {
    m_folder = AppPaths::toDisk(folder);
    txtFolder->setText(QDir::toNativeSeparators(m_folder));
    lstFiles->clear();
    const QDir dir(m_folder);
    if (m_folder.isEmpty() || !dir.exists()) {
        showMessage(AppGlobals::text("STR_PB_NO_FOLDER", "The folder %0 does not exist.",
                                     {QDir::toNativeSeparators(m_folder)}));
        return;
    }
    lstFiles->addItems(dir.entryList(filePatterns(), QDir::Files, QDir::Name | QDir::IgnoreCase));
    if (lstFiles->count() == 0)
        showMessage(AppGlobals::text("STR_PB_NO_PICTURES",
                                     "There are no pictures in this folder. Choose another "
                                     "folder with Browse."));
    else
        showMessage(
            AppGlobals::text("STR_PB_CHOOSE", "Choose a picture in the list to see it here."));
}

void frmPictureBrowser::browseFolder() {
    DialogService::FileRequest request;
    request.kind = DialogService::FileRequest::Folder;
    request.title = AppGlobals::text("STR_PB_CHOOSE_FOLDER", "Choose a folder of pictures");
    request.folder = m_folder;
    const QString chosen = DialogService::fileDialog(this, request);
    if (!chosen.isEmpty())
        setFolder(chosen);
}

frmPictureBrowser::Loaded frmPictureBrowser::loadPicture(const QString& path) {
    try {
        return {path, FreeImagePicture::load(path), QString()};
    } catch (const AppError& error) {
        return {path, QImage(), error.description()};
    }
}

void frmPictureBrowser::loadSelected() {
    const QListWidgetItem* item = lstFiles->currentItem();
    enablePictureCommands(false);
    if (!item) {
        m_current.clear();
        return;
    }
    m_current = QDir(m_folder).filePath(item->text());
    showMessage(AppGlobals::text("STR_PB_LOADING", "Reading %0…", {item->text()}));
    m_reader.clear();
    m_loading.setFuture(QtConcurrent::run(&m_reader, &frmPictureBrowser::loadPicture, m_current));
}

void frmPictureBrowser::pictureLoaded() {
    const Loaded loaded = m_loading.result();
    // The user may have moved on while it was read.
    if (loaded.path != m_current)
        return;
    if (loaded.error.isEmpty()) {
        picView->setPicture(loaded.picture);
        picView->FitAndMaintainRatio();
        m_viewArea->setCurrentWidget(picView);
        enablePictureCommands(true);
    } else {
        showMessage(loaded.error);
    }
    emit loadFinished(loaded.path);
}

void frmPictureBrowser::showMessage(const QString& text) {
    picView->Clear();
    lblMessage->setText(text);
    m_viewArea->setCurrentWidget(lblMessage);
    enablePictureCommands(false);
}

void frmPictureBrowser::enablePictureCommands(bool enabled) {
    for (QPushButton* button : {cmdRotateLeft, cmdRotateRight, cmdFlip, cmdZoomIn, cmdZoomOut,
                                cmdRealSize, cmdFit, cmdCrop, cmdAdd})
        button->setEnabled(enabled);
}

// The picture's own size and how large it is shown, under the picture.
void frmPictureBrowser::showPictureInfo() {
    if (picView->GetPicture().isNull()) {
        lblInfo->clear();
        return;
    }
    lblInfo->setText(AppGlobals::text("STR_PB_INFO", "%0 x %1 pixels, shown at %2 %",
                                      {QString::number(picView->PictureWidth()),
                                       QString::number(picView->PictureHeight()),
                                       QString::number(picView->ZoomPercent())}));
}

void frmPictureBrowser::addToSlide() {
    const QImage picture = picView->croppedPicture();
    if (picture.isNull())
        return;
    const QString path = freeFileName();
    if (path.isEmpty() || !picture.save(path, "PNG")) {
        DialogService::messageBox(
            this,
            AppGlobals::text("STR_PB_HAND_OVER_FAILED",
                             "The picture cannot be handed to the slide: the temporary folder "
                             "%0 cannot be written.",
                             {m_handOver.path()}),
            windowTitle(), QMessageBox::Ok, QMessageBox::Critical);
        return;
    }
    emit AddPicture(path);
}

// A new name each time, so a file the owner has not copied yet is never
// overwritten; named after the picture's own file.
QString frmPictureBrowser::freeFileName() const {
    if (!m_handOver.isValid())
        return QString();
    const QString base = m_handOver.path() + u'/' + QFileInfo(m_current).completeBaseName();
    QString path = base + ".png";
    for (int n = 2; QFileInfo::exists(path); ++n)
        path = base + u'-' + QString::number(n) + ".png";
    return path;
}

void frmPictureBrowser::done(int result) {
    if (clsPropertiesXML* settings = AppGlobals::settings())
        settings->SetProp("preferences", FolderKey, m_folder);
    QDialog::done(result);
}
