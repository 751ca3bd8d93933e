#include "HelpShots.h"

#include "AppGlobals.h"
#include "AppPaths.h"
#include "DialogService.h"
#include "FileCommands.h"
#include "FrmAudioEdit.h"
#include "HelpBrowser.h"
#include "MessageDocument.h"
#include "PhoneConnection.h"
#include "PreviewController.h"
#include "SampleMessage.h"
#include "SettingsBootstrap.h"
#include "TextPropertiesPanel.h"
#include "ToolTabs.h"
#include "clsMMSManager.h"
#include "clsPropertiesXML.h"
#include "ctlAudioRecorder.h"
#include "ctlBrowser.h"
#include "ctlPictureEditor.h"
#include "frmAbout.h"
#include "frmDownloadImage.h"
#include "frmDownloadMMS.h"
#include "frmExport.h"
#include "frmHelp.h"
#include "frmImport.h"
#include "frmMain.h"
#include "frmMmsInfo.h"
#include "frmPictureBrowser.h"
#include "frmPreview.h"
#include "frmSettings.h"
#include "modMain.h"

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QDockWidget>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTabBar>
#include <QTabWidget>
#include <QTextDocument>
#include <QTextStream>
#include <QThread>

namespace {
// Where the pictures show the user's files: in a home of the usual kind, not
// in the private folder the pictures are taken in.
const QString kSampleHome = QStringLiteral("/home/anna");

// Lets the windows lay themselves out and paint, and background work finish.
void settle(int ms = 150) {
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < ms) {
        QApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(5);
    }
}

// Pictures narrower than a help page at its usual size need no scrolling.
constexpr int kPageWidth = 680;
} // namespace

HelpShots::HelpShots(const QString& language, const QString& folder, const QString& pagesFolder)
    : m_language(language), m_german(language.startsWith(QLatin1String("de"))),
      m_folder(QDir(folder).absolutePath()),
      m_pagesFolder(pagesFolder.isEmpty() ? QString() : QDir(pagesFolder).absolutePath()) {}

bool HelpShots::run() {
    if (!m_home.isValid() || !QDir().mkpath(m_folder)) {
        fail(QStringLiteral("no folder to work in"));
        return false;
    }
    if (!start())
        return false;
    SampleMessage(window(), m_language).compose();
    shootMainWindow();
    shootTools();
    shootRecorder();
    shootPreview();
    shootPictureBrowser();
    shootSettings();
    shootFileJobs();
    shootInformation();
    shootSending();
    shootAbout();
    shootHelp();
    modMain::Shutdown();
    return !m_failed;
}

// The program starts as a user's first start does, in the language asked
// for, on settings in a folder of this run's own.
bool HelpShots::start() {
    qputenv("XDG_DATA_HOME", m_home.filePath(QStringLiteral("data")).toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", m_home.filePath(QStringLiteral("config")).toLocal8Bit());
    {
        std::unique_ptr<clsPropertiesXML> settings = SettingsBootstrap::openAndPrepare();
        settings->SetProp("preferences", "Language", m_language);
        // A phone in the preview; no splash screen to wait for.
        settings->SetProp("preferences", "Skin", "candybar");
        settings->SetProp("preferences", "ShowSplash", "0");
        settings->SaveXmlFile();
    }
    AppGlobals::shutdown();
    if (modMain::Main({QStringLiteral("vellumo")}).has_value() || !modMain::mainWindow()) {
        fail(QStringLiteral("the program did not start"));
        return false;
    }
    // The settings dialog shows what a user starts with.
    AppGlobals::settings()->SetProp("preferences", "ShowSplash", "1");
    // Small, so its picture shrinks little on a page.
    window().resize(1000, 680);
    settle(400);
    return true;
}

// The text on the current slide, selected as a click on it does.
void HelpShots::selectCaption() const {
    ctlPictureEditor* editor = window().pictureEditor();
    for (const ctlPictureEditor::ShownObject& shown : editor->shownObjects())
        if (shown.isText)
            return editor->selectObject(shown.index);
}

frmMain& HelpShots::window() const {
    return *modMain::mainWindow();
}

void HelpShots::shootMainWindow() {
    selectCaption();
    // The message's size is measured once editing pauses.
    settle(1500);
    save(&window(), QStringLiteral("main-window"), kPageWidth);
    save(window().findChild<QDockWidget*>(QStringLiteral("dockSlides")),
         QStringLiteral("slide-strip"));
    // The slide with a little of the grey around it.
    ctlPictureEditor* editor = window().pictureEditor();
    saveArea(editor, editor->pictureRect().adjusted(-16, -16, 16, 16),
             QStringLiteral("picture-editor"));
    window().pictureEditor()->ClearPicture();
}

void HelpShots::shootTools() {
    // Wide enough for every tab title of the tools.
    window().resize(1240, 760);
    if (auto* dock = window().findChild<QDockWidget*>(QStringLiteral("dockTools")))
        window().resizeDocks({dock}, {520}, Qt::Horizontal);
    ToolTabs* tools = window().toolTabs();
    const std::pair<int, const char*> tabs[] = {
        {0, "backgrounds-tab"}, {1, "pictures-tab"}, {3, "sounds-tab"}};
    for (const auto& [tab, name] : tabs) {
        tools->setCurrentIndex(tab);
        qobject_cast<ctlBrowser*>(tools->currentWidget())->selectIndex(2);
        settle(600);
        save(tools, QLatin1String(name));
    }
    selectCaption();
    tools->setCurrentIndex(tools->indexOf(window().textProperties()));
    settle();
    saveTop(tools, QStringLiteral("text-tab"), window().textProperties());
    window().pictureEditor()->ClearPicture();
}

void HelpShots::shootRecorder() {
    ToolTabs* tools = window().toolTabs();
    tools->setCurrentIndex(tools->indexOf(tools->recorder()));
    settle();
    saveTop(tools, QStringLiteral("recorder-tab"), tools->recorder());
    auto* editor = new FrmAudioEdit(&window());
    editor->SetAudioSource(AppGlobals::programArchive() + QStringLiteral("Sounds/fanfare.wav"));
    editor->SetStartEndTime(150, 900);
    shootWindow(editor, QStringLiteral("sound-editor"));
}

void HelpShots::shootPreview() {
    window().previewer()->showPreview();
    settle(400);
    save(window().previewer()->preview(), QStringLiteral("preview"));
}

void HelpShots::shootPictureBrowser() {
    frmPictureBrowser* browser = window().pictureBrowser();
    browser->setFolder(AppGlobals::setting("browserPaths", "Backgrounds", QString()));
    browser->resize(kPageWidth, 460);
    browser->show();
    auto* files = browser->findChild<QListWidget*>(QStringLiteral("lstFiles"));
    const QList<QListWidgetItem*> found =
        files->findItems(QStringLiteral("mountains.jpg"), Qt::MatchExactly);
    if (!found.isEmpty())
        files->setCurrentItem(found.first());
    settle(800);
    browser->findChild<QPushButton*>(QStringLiteral("cmdCrop"))->setChecked(true);
    showAsHome(browser);
    settle();
    save(browser, QStringLiteral("picture-browser"));
    browser->close();
}

void HelpShots::shootSettings() {
    auto* dialog = new frmSettings(&window());
    auto* tabs = dialog->findChild<QTabWidget*>(QStringLiteral("tabSettings"));
    dialog->show();
    const char* const names[] = {"settings-general", "settings-pictures", "settings-sounds",
                                 "settings-preview", "settings-browsers", "settings-phone"};
    showAsHome(dialog);
    for (int tab = 0; tab < tabs->count() && tab < int(std::size(names)); ++tab) {
        tabs->setCurrentIndex(tab);
        settle();
        save(dialog, QLatin1String(names[tab]));
    }
    delete dialog;
}

void HelpShots::shootFileJobs() {
    auto* exporter = new frmExport(window().document(), &window());
    exporter->findChild<QLineEdit*>(QStringLiteral("txtFile"))
        ->setText(kSampleHome + QStringLiteral("/Documents/Greetings.smil"));
    shootWindow(exporter, QStringLiteral("export"));
    auto* importer = new frmImport(*window().fileCommands(), window().manager(), &window());
    importer->findChild<QLineEdit*>(QStringLiteral("txtFile"))
        ->setText(kSampleHome + QStringLiteral("/Downloads/Received.wap"));
    shootWindow(importer, QStringLiteral("import"));
}

void HelpShots::shootInformation() {
    frmMmsInfo* info =
        frmMmsInfo::showFor(&window(), window().manager(), window().document().message());
    if (!info)
        return fail(QStringLiteral("no message information"));
    settle(300);
    save(info, QStringLiteral("message-information"));
    delete info;
}

// The message dialog sends as soon as it shows: it is taken as it ends.
void HelpShots::shootSending() {
    auto* message = new frmDownloadMMS(window().phone()->connection(), &window());
    message->SetupDownloadData(&window().manager(), window().document().message());
    message->show();
    settle(2000);
    save(message, QStringLiteral("send-message"));
    delete message;
    auto* picture = new frmDownloadImage(window().phone()->connection(), &window());
    picture->SetDownloadPicture(window().previewer()->slidePicture(1));
    picture->findChild<QCheckBox*>(QStringLiteral("chkAdvanced"))->setChecked(true);
    shootWindow(picture, QStringLiteral("send-picture"));
}

void HelpShots::shootAbout() {
    shootWindow(new frmAbout(&window()), QStringLiteral("about"));
}

// The help window as the user meets it: a search that found pages. With a
// folder for them, the pages named there too, to be looked at, not shipped.
void HelpShots::shootHelp() {
    frmHelp* help = frmHelp::showFile(AppGlobals::helpFile());
    help->resize(kPageWidth, 500);
    help->search(m_german ? QStringLiteral("Hintergrund") : QStringLiteral("background"));
    settle(300);
    save(help, QStringLiteral("help-window"));
    if (!m_pagesFolder.isEmpty())
        shootPages(help);
    help->close();
}

// Each page whole, the window as tall as the page.
void HelpShots::shootPages(frmHelp* help) {
    QDir().mkpath(m_pagesFolder);
    for (const QString& page : help->browser()->pages().all()) {
        help->browser()->setSource(QUrl::fromLocalFile(page));
        settle(200);
        const int tall = int(help->browser()->document()->size().height());
        help->resize(760, std::min(tall + 80, 6000));
        settle(200);
        savePicture(help, m_pagesFolder + u'/' + QFileInfo(page).completeBaseName());
    }
}

// Paths in fields read as they would in a user's home.
void HelpShots::showAsHome(QWidget* window) const {
    const QString data = QDir(m_home.filePath(QStringLiteral("data"))).absolutePath();
    for (QLineEdit* field : window->findChildren<QLineEdit*>())
        if (field->text().startsWith(data))
            field->setText(kSampleHome + QStringLiteral("/.local/share") +
                           field->text().mid(data.size()));
}

void HelpShots::shootWindow(QWidget* shown, const QString& name) {
    shown->show();
    settle(300);
    save(shown, name);
    delete shown;
}

// A tab whose controls fill only its top: the tabs and those controls.
void HelpShots::saveTop(QTabWidget* tabs, const QString& name, const QWidget* shown) {
    const int tall = shown->mapTo(tabs, shown->childrenRect().bottomLeft()).y() + 8;
    saveArea(tabs, QRect(0, 0, tabs->width(), std::min(tall, tabs->height())), name);
}

void HelpShots::saveArea(QWidget* widget, const QRect& area, const QString& name) {
    if (!widget->grab(area).save(m_folder + u'/' + name + QStringLiteral(".png"), "PNG"))
        fail(name + QStringLiteral(".png: not saved"));
}

void HelpShots::save(QWidget* widget, const QString& name, int widest) {
    if (!widget)
        return fail(name + QStringLiteral(": no such window"));
    savePicture(widget, m_folder + u'/' + name, widest);
}

void HelpShots::savePicture(QWidget* widget, const QString& path, int widest) {
    QImage picture = widget->grab().toImage();
    if (widest > 0 && picture.width() > widest)
        picture = picture.scaledToWidth(widest, Qt::SmoothTransformation);
    if (!picture.save(path + QStringLiteral(".png"), "PNG"))
        fail(path + QStringLiteral(".png: not saved"));
}

void HelpShots::fail(const QString& what) {
    QTextStream(stderr) << "vellumo-helpshots: " << what << Qt::endl;
    m_failed = true;
}
