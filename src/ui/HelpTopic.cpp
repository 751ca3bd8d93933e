#include "HelpTopic.h"

#include <QApplication>
#include <QDialog>
#include <QHash>
#include <QTabBar>
#include <QTabWidget>

namespace {
// By the object names the windows and panels give themselves.
const QHash<QString, QString>& topics() {
    static const QHash<QString, QString> byName{
        {"frmMain", "main-window.html"},
        {"dockSlides", "slides.html"},
        {"ctlSlideThumbs", "slides.html"},
        {"SlidePanel", "slides.html#panel"},
        {"txtMessage", "text.html#slide-text"},
        {"txtSlideTime", "slides.html#time"},
        {"ctlPictureEditor", "picture-editor.html"},
        {"ctlBrowserBackgrounds", "media-browsers.html#backgrounds"},
        {"ctlBrowserPictures", "media-browsers.html#pictures"},
        {"ctlBrowserAnimations", "media-browsers.html#animations"},
        {"ctlBrowserSounds", "sounds.html"},
        {"ctlAudioRecorder", "recorder.html"},
        {"TextPropertiesPanel", "text.html#text-tab"},
        {"frmPreview", "preview.html"},
        {"frmPictureBrowser", "picture-browser.html"},
        {"FrmAudioEdit", "recorder.html#edit"},
        {"frmSettings", "settings.html"},
        {"pageGeneral", "settings.html#general"},
        {"pagePictures", "settings.html#pictures"},
        {"pageSounds", "settings.html#sounds"},
        {"pagePreview", "settings.html#preview"},
        {"pageBrowsers", "settings.html#browsers"},
        {"pagePhone", "settings.html#phone"},
        {"frmExport", "export.html"},
        {"frmImport", "import.html"},
        {"frmMmsInfo", "message-information.html"},
        {"frmDownloadMMS", "send-message.html"},
        {"frmDownloadImage", "send-picture.html"},
        {"frmAbout", "about.html"},
        {"frmHelp", "#help"}};
    return byName;
}
} // namespace

// Where the user is: the focus, when it is in the window; on a tab of a tab
// widget, the tab shown; in a dialog with tabs, the tab shown when the focus
// is on none of them (on its buttons).
const QWidget* HelpTopic::start(const QWidget* window) {
    const QWidget* focus = QApplication::focusWidget();
    if (!focus || (focus != window && !window->isAncestorOf(focus)))
        focus = window;
    if (const auto* bar = qobject_cast<const QTabBar*>(focus))
        if (const auto* tabs = qobject_cast<const QTabWidget*>(bar->parentWidget()))
            return tabs->currentWidget() ? tabs->currentWidget() : focus;
    const auto* tabs = window->findChild<const QTabWidget*>();
    if (qobject_cast<const QDialog*>(window) && tabs && tabs->currentWidget() &&
        !tabs->isAncestorOf(focus))
        return tabs->currentWidget();
    return focus;
}

// A window without a page of its own (a message box) tells of the window
// it was opened over.
QString HelpTopic::of(const QWidget* window) {
    if (!window)
        return QString();
    for (const QWidget* at = start(window); at; at = at->parentWidget())
        if (const auto topic = topics().constFind(at->objectName()); topic != topics().cend())
            return *topic;
    return QString();
}

QStringList HelpTopic::all() {
    return topics().values();
}
