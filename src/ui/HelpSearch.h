#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <functional>

// Finds the help pages that speak of every word of a search, and writes
// the page that lists them: each as a link with its hits shown in their
// sentences. A page's words are read from its text, never from its markup.
class HelpSearch {
public:
    struct Match {
        QString file;
        QString title;
        int hits = 0;
        QStringList excerpts; // plain text around the first hits
    };

    explicit HelpSearch(const QStringList& files);
    // The pages with every word of the query, most hits first.
    QList<Match> find(const QString& query) const;
    // The page that lists the matches, in the language of the texts given
    // (plain text, written out as such).
    struct Texts {
        QString heading;                       // what was searched for
        QString summary;                       // how many pages were found, or none
        std::function<QString(int hits)> hits; // how often a page has the words
        QUrl styleSheet;                       // of the pages, so the list looks like them
    };
    static QString resultsPage(const QList<Match>& matches, const Texts& texts);

private:
    struct Page {
        QString title;
        QString text;
    };
    static Page read(const QString& file);
    static QStringList words(const QString& query);
    static Match match(const QString& file, const Page& page, const QStringList& words);
    static QString excerpt(const QString& text, qsizetype at, const QStringList& words);

    QStringList m_files;
    QHash<QString, Page> m_pages;
};
