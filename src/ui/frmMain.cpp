#include "frmMain.h"

#include "AppGlobals.h"
#include "ClassGuard.h"
#include "ClassSizeLabel.h"
#include "DialogService.h"
#include "EventPump.h"
#include "FileCommands.h"
#include "HelpKey.h"
#include "HelpPages.h"
#include "HelpTopic.h"
#include "MessageDocument.h"
#include "PhoneConnection.h"
#include "PreviewController.h"
#include "RecoveryJournal.h"
#include "SlideCommands.h"
#include "SlidePanel.h"
#include "SlideRenderer.h"
#include "SlideSoundPlayer.h"
#include "SoundAttacher.h"
#include "TextPropertiesPanel.h"
#include "ToolTabs.h"
#include "VbFormat.h"
#include "WorkFolderClaim.h"
#include "clsDrawObjects.h"
#include "clsMessage.h"
#include "clsPropertiesXML.h"
#include "clsXMLocalizer.h"
#include "ctlAudioRecorder.h"
#include "ctlBrowser.h"
#include "ctlMainMenu.h"
#include "ctlPictureEditor.h"
#include "ctlSlideThumbs.h"
#include "frmAbout.h"
#include "frmDownloadImage.h"
#include "frmDownloadMMS.h"
#include "frmExport.h"
#include "frmHelp.h"
#include "frmImport.h"
#include "frmMmsInfo.h"
#include "frmPictureBrowser.h"
#include "frmPreview.h"
#include "frmSettings.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QFileInfo>
#include <QLabel>
#include <QProgressBar>
#include <QScreen>
#include <QSizeGrip>
#include <QStatusBar>
#include <QUndoStack>

namespace {
// Commands whose windows are not built yet: shown, but not offered.

QString text(const char* key, const char* fallback) {
    return AppGlobals::text(key, fallback);
}

// The export and import dialogs keep the window still while they are open, and go when
// closed; the help stays open to them.
void showFileJob(FileJobDialog* dialog) {
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->setWindowModality(Qt::WindowModal);
    dialog->showAndAsk();
}
} // namespace

frmMain::frmMain(QWidget* parent)
    : QMainWindow(parent), m_document(nullptr), m_menu(new ctlMainMenu(this)),
      m_thumbs(new ctlSlideThumbs), m_editor(nullptr), m_panel(nullptr),
      m_textPanel(new TextPropertiesPanel), m_tools(new ToolTabs(m_textPanel)),
      m_soundPlayer(new SlideSoundPlayer(this)), m_slides(nullptr), m_guard(nullptr),
      m_files(nullptr), m_status(new QLabel), m_progress(new QProgressBar),
      m_phone(new PhoneConnection(this)) {
    setObjectName("frmMain");
    m_manager.InitializeFromSettings();
    claimWorkFolder();
    m_document = new MessageDocument(m_manager, this);
    m_editor = new ctlPictureEditor(*m_document);
    m_editor->SetSurfaceSize(SlideRenderer::surfaceFromSettings());
    m_panel = new SlidePanel(m_editor);
    m_guard = new ClassGuard(*m_document, this);
    m_editor->setClassGuard(m_guard);
    m_sounds = std::make_unique<SoundAttacher>(*m_document, this, m_guard);
    m_slides = new SlideCommands(*m_document, this);
    m_files = new FileCommands(*m_document, m_menu->recentFiles(), this, m_guard);
    m_size = new ClassSizeLabel(*m_document);
    if (m_claim)
        m_journal = new RecoveryJournal(*m_document, *m_files, *m_claim, this);
    buildWindow();
    m_previewer = new PreviewController(
        {this, m_document, &m_manager, m_editor, m_panel, m_menu, m_thumbs, m_tools}, this);
    connectDocument();
    connectControls();
    connectEditor();
    connectPreview();
    connectHelp();
    TimerExitWait.setSingleShot(true);
    TimerExitWait.setInterval(0);
    connect(&TimerExitWait, &QTimer::timeout, this, &QWidget::close);
    if (clsPropertiesXML* settings = AppGlobals::settings())
        m_menu->recentFiles().load(*settings);
    restorePosition();
    applySettings();
    if (!m_journal || !m_journal->offerRecovery(this))
        m_document->newMessage();
}

// Each running copy works in a folder of its own; without one (every folder
// held, or none writable) it shares the settings' folder, unguarded, as before.
void frmMain::claimWorkFolder() {
    m_claim = WorkFolderClaim::claim(m_manager.GetWorkFolderPath());
    if (m_claim)
        m_manager.setWorkFolder(m_claim->folder());
}

void frmMain::applySettings() {
    applyLanguage();
    m_panel->setTimeFormat(AppGlobals::setting("preferences", "MMSTimeFormat", "ms"));
    m_menu->EnableExportImport(AppGlobals::setting("preferences", "ExportImport", "0") ==
                               QLatin1String("1"));
    m_tools->applySettings();
    m_phone->setUp();
    // The skin's phone may bring its own slide picture size.
    m_previewer->applySettings();
    m_editor->SetSurfaceSize(SlideRenderer::surfaceFromSettings());
    m_size->settingsApplied();
    TranslateForm();
}

// A new language is taken on at once by every window that is open.
void frmMain::applyLanguage() {
    clsXMLocalizer* localizer = AppGlobals::localizer();
    const QString language = AppGlobals::setting("preferences", "Language", "en-us");
    if (!localizer || localizer->GetLanguage() == language || !localizer->SetLanguage(language))
        return;
    // The help follows: its pages lie beside those of the other language.
    if (const QString help = AppGlobals::helpFile(); !help.isEmpty())
        AppGlobals::setHelpFile(QFileInfo(help).path() + u'/' + language + QStringLiteral(".html"));
    for (QWidget* window : QApplication::topLevelWidgets())
        if (window != this && window->metaObject()->indexOfMethod("TranslateForm()") >= 0)
            QMetaObject::invokeMethod(window, "TranslateForm");
}

frmSettings* frmMain::settingsDialog() const {
    return mFrmSettings;
}

// The send dialogs are modal and go when closed; a transfer keeps them open.
void frmMain::sendMessage() {
    auto* dialog = new frmDownloadMMS(m_phone->connection(), this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->SetupDownloadData(&m_manager, m_document->message());
    dialog->open();
}

void frmMain::sendSlidePicture() {
    auto* dialog = new frmDownloadImage(m_phone->connection(), this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    dialog->SetDownloadPicture(m_previewer->slidePicture(m_document->currentSlide()));
    connect(m_phone, &PhoneConnection::Connect, dialog, &frmDownloadImage::SetConnectState);
    dialog->open();
}

void frmMain::showSettings() {
    if (mFrmSettings)
        return mFrmSettings->raise();
    mFrmSettings = new frmSettings(this);
    mFrmSettings->setAttribute(Qt::WA_DeleteOnClose);
    connect(mFrmSettings, &frmSettings::applied, this, &frmMain::applySettings);
    mFrmSettings->open();
}

// The document goes before the manager it works on, and without telling the
// half-destroyed window about its history going.
frmMain::~frmMain() {
    if (m_journal)
        m_journal->close();
    delete frmHelp::current();
    m_editor->blockSignals(true);
    m_editor->ClearPicture();
    m_document->undoStack().blockSignals(true);
    m_document->blockSignals(true);
    delete m_document;
}

void frmMain::buildWindow() {
    setMenuBar(m_menu);
    m_menu->installShortcuts(this);
    QDockWidget* strip = dock("dockSlides", m_thumbs, Qt::LeftDockWidgetArea);
    m_thumbs->setMinimumWidth(150);
    QDockWidget* tools = dock("dockTools", m_tools, Qt::RightDockWidgetArea);
    m_tools->setMinimumWidth(300);
    // The slide keeps the middle; the browsers get room for three thumbnails a row and six tab
    // titles.
    resizeDocks({strip, tools}, {160, 470}, Qt::Horizontal);
    setCentralWidget(m_panel);
    m_progress->setMaximumWidth(200);
    m_progress->hide();
    statusBar()->addWidget(m_status, 1);
    statusBar()->addPermanentWidget(m_progress);
    statusBar()->addPermanentWidget(m_size);
    statusBar()->addPermanentWidget(m_phone->indicator());
}

QDockWidget* frmMain::dock(const char* name, QWidget* content, Qt::DockWidgetArea area) {
    auto* holder = new QDockWidget(this);
    holder->setObjectName(QLatin1String(name));
    holder->setWidget(content);
    holder->setFeatures(QDockWidget::DockWidgetMovable | QDockWidget::DockWidgetFloatable);
    addDockWidget(area, holder);
    return holder;
}

void frmMain::connectDocument() {
    connect(m_document, &MessageDocument::slidesChanged, this, &frmMain::onSlidesChanged);
    connect(m_document, &MessageDocument::currentSlideChanged, this,
            &frmMain::onCurrentSlideChanged);
    QUndoStack& history = m_document->undoStack();
    auto followHistory = [this, &history] {
        m_menu->MenuItemEnabled(ctlMainMenu::Undo, history.canUndo());
        m_menu->MenuItemEnabled(ctlMainMenu::Redo, history.canRedo());
    };
    connect(&history, &QUndoStack::canUndoChanged, this, followHistory);
    connect(&history, &QUndoStack::canRedoChanged, this, followHistory);
    followHistory();
    connect(&m_manager, &clsMMSManager::ProsessingSlide, this, &frmMain::showProgress);
    connect(m_files, &FileCommands::fileNameChanged, this,
            [this] { setWindowTitle(windowCaption()); });
}

void frmMain::connectControls() {
    connect(m_menu, &ctlMainMenu::MenuClick, this, &frmMain::onMenuClick);
    connect(m_thumbs, &ctlSlideThumbs::slideSelected, this, [this](int slide) {
        m_editor->SaveDrawObjects();
        m_document->setCurrentSlide(slide);
    });
    connect(m_thumbs, &ctlSlideThumbs::menuCommand, this, [this](int command, int slide) {
        m_editor->SaveDrawObjects();
        m_slides->runStripCommand(command, slide);
    });
    connect(m_thumbs, &ctlSlideThumbs::moveRequested, this, [this](int from, int to) {
        m_editor->SaveDrawObjects();
        m_document->moveSlide(from, to);
    });
    connect(m_slides, &SlideCommands::appendedAtEnd, m_thumbs, &ctlSlideThumbs::ScrollToEnd);
    connect(m_panel, &SlidePanel::textEdited, m_document, &MessageDocument::setSlideText);
    connect(m_panel, &SlidePanel::durationEdited, m_document, &MessageDocument::setSlideDuration);
    connect(m_panel, &SlidePanel::fieldLeft, m_document, &MessageDocument::endFieldVisit);
    connect(m_panel, &SlidePanel::addClicked, this, [this] {
        m_editor->SaveDrawObjects();
        m_slides->add();
    });
    connect(m_panel, &SlidePanel::duplicateClicked, this, [this] {
        m_editor->SaveDrawObjects();
        m_slides->duplicateAfter(m_document->currentSlide());
    });
    connect(m_panel, &SlidePanel::playSoundClicked, this, &frmMain::playSlideSound);
    connect(m_soundPlayer, &SlideSoundPlayer::stopped, m_panel,
            [this] { m_panel->setSoundPlaying(false); });
    connect(m_panel, &SlidePanel::deleteClicked, this, [this] {
        m_editor->SaveDrawObjects();
        m_slides->deleteSlide(m_document->currentSlide());
    });
}

void frmMain::connectHelp() {
    connect(new HelpKey(this), &HelpKey::pressed, this, &frmMain::showHelp);
}

void frmMain::connectPreview() {
    connect(m_panel, &SlidePanel::previewClicked, m_previewer, &PreviewController::togglePlaying);
    connect(m_previewer, &PreviewController::slideSizeChanged, this, &frmMain::applySlideSize);
    connect(m_previewer, &PreviewController::downloadPictureRequested, this,
            &frmMain::sendSlidePicture);
    m_size->setBusy([this] { return m_previewer->isPlaying(); });
}

// The editor, the strip and the preview take a new slide picture size.
void frmMain::applySlideSize(QSize size) {
    m_editor->SaveDrawObjects();
    m_editor->SetSurfaceSize(size);
    onSlidesChanged();
}

void frmMain::connectEditor() {
    connect(m_editor, &ctlPictureEditor::addTextRequested, m_editor, &ctlPictureEditor::AddText);
    connect(m_editor, &ctlPictureEditor::soundDropped, this,
            [this](const QString& folder, const QString& file) { m_sounds->attach(folder, file); });
    connect(m_editor, &ctlPictureEditor::selectionChanged, this, &frmMain::showSelectedText);
    connect(m_textPanel, &TextPropertiesPanel::propertiesEdited, m_editor,
            &ctlPictureEditor::ApplyText);
    connect(m_tools, &ToolTabs::fileChosen, this, &frmMain::putOnSlide);
    connect(m_tools, &ToolTabs::pictureBrowserRequested, this, &frmMain::showPictureBrowser);
    connect(m_tools->recorder(), &ctlAudioRecorder::recordingFinished, this,
            [this](const QString& folder, const QString& file) { m_sounds->attach(folder, file); });
}

// A file chosen in a browser goes on the current slide as that browser's kind.
void frmMain::putOnSlide(int thumbType, const QString& path) {
    switch (thumbType) {
    case ctlBrowser::Pictures:
        m_editor->AddImage(path);
        break;
    case ctlBrowser::Sounds: {
        const QFileInfo file(path);
        m_sounds->attach(file.path() + u'/', file.fileName());
        break;
    }
    default:
        m_editor->AddBackgroundPicture(path);
    }
}

frmPictureBrowser* frmMain::pictureBrowser() {
    if (!mFrmPictureBrowser) {
        mFrmPictureBrowser = new frmPictureBrowser(this);
        connect(mFrmPictureBrowser, &frmPictureBrowser::AddPicture, this,
                &frmMain::mFrmPictureBrowser_AddPicture);
    }
    return mFrmPictureBrowser;
}

void frmMain::showPictureBrowser() {
    frmPictureBrowser* browser = pictureBrowser();
    browser->setSlideSize(m_editor->surfaceSize());
    browser->show();
    browser->raise();
    browser->activateWindow();
}

// The picture comes as a file of the browser's own; the editor copies it in.
void frmMain::mFrmPictureBrowser_AddPicture(const QString& file) {
    m_editor->SaveDrawObjects();
    m_editor->AddImage(file);
}

// The play button beside the sound: plays it, or stops it while it plays.
void frmMain::playSlideSound() {
    if (m_soundPlayer->isPlaying())
        return m_soundPlayer->stop();
    const clsMessage* message = m_document->message();
    const int slide = m_document->currentSlide();
    if (!message || slide < 1 || slide > message->Slides().Count())
        return;
    const QString sound = message->Slides().Item(slide).Sound();
    QString why;
    if (m_soundPlayer->play(m_manager.GetWorkFolderPath() + sound, &why))
        return m_panel->setSoundPlaying(true);
    DialogService::messageBox(this, why, text("STR_ERROR", "Error"), QMessageBox::Ok,
                              QMessageBox::Warning);
}

void frmMain::showSelectedText() {
    const DrawObjectProperties selected = m_editor->selectedProperties();
    m_textPanel->showText(selected.typ == QLatin1String("text") ? &selected : nullptr);
}

void frmMain::onMenuClick(int number) {
    // Whatever the editor is in the middle of belongs to the slide first.
    m_editor->SaveDrawObjects();
    if (m_slides->runMenuCommand(number))
        return;
    switch (number) {
    case ctlMainMenu::New:
        newMessage();
        break;
    case ctlMainMenu::Open:
        m_files->openDialog();
        break;
    case ctlMainMenu::Save:
        m_files->save();
        break;
    case ctlMainMenu::SaveAs:
        m_files->saveAs();
        break;
    case ctlMainMenu::Info:
        frmMmsInfo::showFor(this, m_manager, m_document->message());
        break;
    case ctlMainMenu::Export:
        if (m_guard->mayLeave(ClassGuard::Leaving::Export))
            showFileJob(new frmExport(*m_document, this));
        break;
    case ctlMainMenu::Import:
        showFileJob(new frmImport(*m_files, m_manager, this));
        break;
    case ctlMainMenu::Recent:
        m_files->openRecent(m_menu->GetRecentSelectedFile());
        break;
    case ctlMainMenu::Exit:
        requestExit();
        break;
    case ctlMainMenu::Help:
        showHelp();
        break;
    case ctlMainMenu::About:
        showAbout();
        break;
    case ctlMainMenu::Settings:
        showSettings();
        break;
    case ctlMainMenu::SendMessage:
        if (m_guard->mayLeave(ClassGuard::Leaving::Send))
            sendMessage();
        break;
    case ctlMainMenu::FitToClass:
        m_guard->fitMessage();
        break;
    case ctlMainMenu::DownloadPicture:
        sendSlidePicture();
        break;
    case ctlMainMenu::Background:
        m_editor->BrowseAddBackground();
        break;
    case ctlMainMenu::Preview:
        m_previewer->togglePlaying();
        break;
    case ctlMainMenu::ShowPreview:
        m_previewer->showPreview();
        break;
    case ctlMainMenu::Undo:
        m_document->undoStack().undo();
        break;
    case ctlMainMenu::Redo:
        m_document->undoStack().redo();
        break;
    default:
        break;
    }
}

// A new message is refused while the message plays.
void frmMain::newMessage() {
    if (m_previewer->isPlaying()) {
        DialogService::messageBox(
            this, text("STR_PREVIEW_PLAYING", "The preview is playing. Stop it first."),
            text("STR_PREVIEW_PLAYER", "Preview"), QMessageBox::Ok, QMessageBox::Information);
        return;
    }
    m_files->newMessage();
}

void frmMain::onSlidesChanged() {
    const clsMessage* message = m_document->message();
    m_thumbs->DrawThumbs(message);
    m_panel->showTotal(message ? message->Slides().TotalDuration() : 0);
    showSlide(m_document->currentSlide());
}

// An edit that moves the current slide has shown it with its slides already.
void frmMain::onCurrentSlideChanged(int slide) {
    if (slide != m_shownSlide)
        showSlide(slide);
}

void frmMain::showSlide(int slide) {
    m_shownSlide = slide;
    m_soundPlayer->stop();
    // Recordings are kept with the open message, in a folder of its own.
    m_tools->recorder()->setSaveFolder(m_manager.GetWorkFolderPath() + QStringLiteral("Sounds/"));
    m_thumbs->SelectSlide(slide);
    m_panel->showSlide(m_document->message(), slide);
    m_editor->LoadDrawObjects();
    m_previewer->showCurrentSlide();
    showStatus();
}

void frmMain::showStatus() {
    m_status->setText(AppGlobals::text(
        "STR_SLIDE_OF", "Slide %0 of %1",
        {QString::number(m_document->currentSlide()), QString::number(m_document->slideCount())}));
}

// Opening and saving report each slide. Only the progress bar is painted at
// once: running the event loop here would paint the strip from a message the
// manager is just replacing.
void frmMain::showProgress(int slide, int count) {
    m_progress->setVisible(slide < count);
    m_progress->setRange(0, std::max(count, 1));
    m_progress->setValue(slide);
    m_progress->setFormat(AppGlobals::text("STR_SLIDE_OF", "Slide %0 of %1",
                                           {QString::number(slide), QString::number(count)}));
    if (m_progress->isVisible())
        m_progress->repaint();
}

QString frmMain::windowCaption() const {
    const QString file = m_files->fileName();
    const QString name =
        file.isEmpty() ? text("STR_UNTITLED", "Untitled") + ".mms" : QFileInfo(file).fileName();
    return name + " -" + applicationTitle();
}

void frmMain::TranslateForm() {
    if (clsXMLocalizer* localizer = AppGlobals::localizer())
        localizer->TranslateForm(this);
    m_menu->TranslateControl();
    m_thumbs->TranslateControl();
    m_panel->TranslateForm();
    m_editor->TranslateControl();
    m_textPanel->TranslateControl();
    m_tools->TranslateControl();
    m_previewer->TranslateForm();
    m_phone->TranslateControl();
    if (mFrmPictureBrowser)
        mFrmPictureBrowser->TranslateControl();
    if (auto* strip = findChild<QDockWidget*>("dockSlides"))
        strip->setWindowTitle(text("STR_SLIDES", "Slides"));
    if (auto* tools = findChild<QDockWidget*>("dockTools"))
        tools->setWindowTitle(text("STR_TOOLS", "Tools"));
    m_progress->setAccessibleName(text("STR_PROGRESS", "Progress"));
    if (auto* grip = statusBar()->findChild<QSizeGrip*>())
        grip->setAccessibleName(text("STR_RESIZE_GRIP", "Resize the window"));
    setWindowTitle(windowCaption());
    showStatus();
}

void frmMain::bringToFront() {
    showNormal();
    raise();
    activateWindow();
}

void frmMain::openCommandLine(const QString& commandLine) {
    const QString file = fileFromCommandLine(commandLine);
    if (!file.isEmpty())
        m_files->open(QFileInfo(file).absoluteFilePath());
}

void frmMain::openHandedArguments(const QStringList& arguments) {
    if (!arguments.value(0).isEmpty())
        m_files->openRecent(arguments.value(0));
}

QString frmMain::fileFromCommandLine(const QString& commandLine) {
    const QString line = commandLine.trimmed();
    if (line.startsWith(u'"'))
        return line.mid(1).section(u'"', 0, 0);
    return line.section(u' ', 0, 0);
}

void frmMain::requestExit() {
    if (!m_files->mayExit())
        return;
    m_exitDecided = true;
    // The decision returns to the menu before the window goes.
    TimerExitWait.start();
}

void frmMain::closeEvent(QCloseEvent* event) {
    m_editor->SaveDrawObjects();
    if (!m_exitDecided && !m_files->mayExit()) {
        event->ignore();
        return;
    }
    m_exitDecided = true;
    keepSettings();
    event->accept();
}

void frmMain::restorePosition() {
    // Room for the strip, the slide at twice its size and three thumbnails a row.
    const QScreen* primary = QGuiApplication::primaryScreen();
    const QSize room = primary ? primary->availableGeometry().size() * 0.9 : QSize(1280, 800);
    resize(QSize(1280, 800).boundedTo(room).expandedTo(QSize(960, 640)));
    const QStringList position =
        AppGlobals::setting("preferences", "MainPosition", "-1;-1").split(u';');
    const QPoint topLeft(position.value(0).toInt(), position.value(1).toInt());
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (topLeft.x() > 0 && topLeft.y() > 0 && screen &&
        screen->availableGeometry().contains(QRect(topLeft, size())))
        move(topLeft);
    else if (screen)
        move(screen->availableGeometry().center() - rect().center());
}

void frmMain::keepSettings() {
    clsPropertiesXML* settings = AppGlobals::settings();
    if (!settings)
        return;
    settings->SetProp("preferences", "MainPosition",
                      QString::number(x()) + u';' + QString::number(y()));
    m_menu->recentFiles().save(*settings);
    if (m_previewer->preview()->isVisible() && m_previewer->preview()->isFloating())
        settings->SetProp("preferences", "PreviewPosition",
                          QString::number(m_previewer->preview()->x()) + u';' +
                              QString::number(m_previewer->preview()->y()));
    m_tools->keepSettings(*settings);
    settings->SaveXmlFile();
}

// The page about the window in front; the English help when the language
// has none.
void frmMain::showHelp() {
    const QString file = AppGlobals::helpFile();
    if (HelpPages(file).contents().isEmpty()) {
        const QString message =
            AppGlobals::localizer()
                ? AppGlobals::localizer()->GetStringPar("STR_HELP_MISSING", {file})
                : QString();
        DialogService::messageBox(this, message.isEmpty() ? file : message,
                                  text("APP_PRODUCTNAME", "Vellumo"), QMessageBox::Ok,
                                  QMessageBox::Information);
        return;
    }
    frmHelp::showFile(file, HelpTopic::of(QApplication::activeWindow()));
}

void frmMain::showAbout() {
    auto* about = new frmAbout(this);
    about->setAttribute(Qt::WA_DeleteOnClose);
    about->open();
}
