#include "frmHelp.h"

#include <QTextBrowser>
#include <QUrl>
#include <QVBoxLayout>

frmHelp::frmHelp(QWidget* parent) : QWidget(parent, Qt::Window), m_browser(new QTextBrowser(this)) {
    setObjectName("frmHelp");
    setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_browser);
    m_browser->setOpenExternalLinks(true);
    resize(640, 560);
}

void frmHelp::load(const QString& file) {
    m_browser->setSource(QUrl::fromLocalFile(file));
    setWindowTitle(m_browser->documentTitle());
}

frmHelp* frmHelp::showFile(const QString& file, QWidget* parent) {
    auto* window =
        parent ? parent->findChild<frmHelp*>(QString(), Qt::FindDirectChildrenOnly) : nullptr;
    if (!window)
        window = new frmHelp(parent);
    window->load(file);
    window->show();
    window->raise();
    window->activateWindow();
    return window;
}
