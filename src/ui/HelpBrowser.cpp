#include "HelpBrowser.h"

#include <QFileInfo>
#include <QUrlQuery>

namespace {
const QString kSearchScheme = QStringLiteral("help-search");
const QString kQueryItem = QStringLiteral("q");
} // namespace

HelpBrowser::HelpBrowser(QWidget* parent) : QTextBrowser(parent), m_pages(QString()) {
    setObjectName(QStringLiteral("txtHelpPage"));
    // Web addresses open in the desktop's browser; pages of the help here.
    setOpenExternalLinks(true);
}

void HelpBrowser::setPages(const HelpPages& pages) {
    m_pages = pages;
}

void HelpBrowser::setResultsWriter(std::function<QString(const QString&)> writer) {
    m_results = std::move(writer);
}

void HelpBrowser::showSearch(const QString& query) {
    QUrl address;
    address.setScheme(kSearchScheme);
    address.setQuery(QUrlQuery{{kQueryItem, query}});
    setSource(address, QTextDocument::HtmlResource);
}

bool HelpBrowser::showsSearch() const {
    return source().scheme() == kSearchScheme;
}

QString HelpBrowser::searchOf(const QUrl& address) {
    return address.scheme() == kSearchScheme
               ? QUrlQuery(address).queryItemValue(kQueryItem, QUrl::FullyDecoded)
               : QString();
}

// A link to a page that is not there leads to the contents.
void HelpBrowser::doSetSource(const QUrl& name, QTextDocument::ResourceType type) {
    const QUrl address = source().resolved(name);
    if (address.isLocalFile() && !QFileInfo(address.toLocalFile()).isFile())
        return QTextBrowser::doSetSource(QUrl::fromLocalFile(m_pages.contents()), type);
    QTextBrowser::doSetSource(name, type);
}

QVariant HelpBrowser::loadResource(int type, const QUrl& name) {
    if (name.scheme() == kSearchScheme && m_results)
        return m_results(searchOf(name));
    return QTextBrowser::loadResource(type, name);
}
