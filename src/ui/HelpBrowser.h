#pragma once

#include "HelpPages.h"

#include <QTextBrowser>
#include <functional>

// Shows the pages of the help: a page that is missing shows the contents
// instead, and a search shows the page that lists its matches, kept in the
// history like any other page so Back returns to it.
class HelpBrowser : public QTextBrowser {
    Q_OBJECT
public:
    explicit HelpBrowser(QWidget* parent = nullptr);

    void setPages(const HelpPages& pages);
    const HelpPages& pages() const { return m_pages; }
    // Writes the page that lists what a search found.
    void setResultsWriter(std::function<QString(const QString& query)> writer);
    void showSearch(const QString& query);
    bool showsSearch() const;
    static QString searchOf(const QUrl& address);

    QVariant loadResource(int type, const QUrl& name) override;

protected:
    void doSetSource(const QUrl& name, QTextDocument::ResourceType type) override;

private:
    HelpPages m_pages;
    std::function<QString(const QString&)> m_results;
};
