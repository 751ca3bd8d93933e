#include "frmHelp.h"

#include <QApplication>
#include <QHash>
#include <QPointer>
#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

namespace {
QPointer<frmHelp>& openWindow() {
    static QPointer<frmHelp> window;
    return window;
}

// Windows without a part of their own are told of where they are used.
const QHash<QString, QString>& topics() {
    static const QHash<QString, QString> byWindow{{"frmMain", "slides"},
                                                  {"frmPreview", "preview"},
                                                  {"frmSettings", "settings"},
                                                  {"frmDownloadMMS", "phone"},
                                                  {"frmDownloadImage", "phone"},
                                                  {"frmExport", "export"},
                                                  {"frmImport", "export"},
                                                  {"frmMmsInfo", "files"},
                                                  {"frmPictureBrowser", "picture"},
                                                  {"FrmAudioEdit", "sound"}};
    return byWindow;
}
} // namespace

frmHelp::frmHelp() : QWidget(nullptr, Qt::Window), m_browser(new QTextBrowser(this)) {
    setObjectName("frmHelp");
    setAttribute(Qt::WA_DeleteOnClose);
    // Reading the help never keeps the program running after its window closed.
    setAttribute(Qt::WA_QuitOnClose, false);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_browser);
    m_browser->setOpenExternalLinks(true);
    resize(640, 560);
}

void frmHelp::load(const QString& file, const QString& topic) {
    QUrl page = QUrl::fromLocalFile(file);
    page.setFragment(topic.isEmpty() ? QString() : topic);
    m_browser->setSource(page);
    setWindowTitle(m_browser->documentTitle());
}

QString frmHelp::shownTopic() const {
    return m_browser->source().fragment();
}

frmHelp* frmHelp::current() {
    return openWindow();
}

QString frmHelp::topicOf(const QWidget* window) {
    return window ? topics().value(window->objectName()) : QString();
}

frmHelp* frmHelp::showFile(const QString& file, const QString& topic) {
    QPointer<frmHelp>& window = openWindow();
    if (!window) {
        window = new frmHelp;
        // Over the window the user asked from, as a child window would be.
        if (const QWidget* asking = QApplication::activeWindow())
            window->move(asking->geometry().center() - window->rect().center());
    }
    window->load(file, topic);
    window->show();
    window->raise();
    window->activateWindow();
    return window;
}
