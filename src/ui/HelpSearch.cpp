#include "HelpSearch.h"

#include <QFile>
#include <QRegularExpression>
#include <QTextDocument>
#include <QUrl>
#include <algorithm>

namespace {
// Text shown either side of a hit, and hits shown per page.
constexpr qsizetype kAround = 60;
constexpr int kExcerpts = 3;

// The words in bold, the rest as it reads: found in the plain text, so a
// word never matches inside the markup that shows another.
QString marked(const QString& plain, const QStringList& words) {
    QStringList alternatives;
    for (const QString& word : words)
        alternatives << QRegularExpression::escape(word);
    const QRegularExpression any(alternatives.join(u'|'),
                                 QRegularExpression::CaseInsensitiveOption);
    QString html;
    qsizetype done = 0;
    for (const QRegularExpressionMatch& hit : any.globalMatch(plain)) {
        html += plain.mid(done, hit.capturedStart() - done).toHtmlEscaped() +
                QStringLiteral("<b>") + hit.captured().toHtmlEscaped() + QStringLiteral("</b>");
        done = hit.capturedEnd();
    }
    return html + plain.mid(done).toHtmlEscaped();
}
} // namespace

HelpSearch::HelpSearch(const QStringList& files) : m_files(files) {
    for (const QString& file : files)
        m_pages.insert(file, read(file));
}

HelpSearch::Page HelpSearch::read(const QString& file) {
    QFile source(file);
    if (!source.open(QIODevice::ReadOnly))
        return {};
    QTextDocument document;
    document.setHtml(QString::fromUtf8(source.readAll()));
    return {document.metaInformation(QTextDocument::DocumentTitle),
            document.toPlainText().simplified()};
}

QStringList HelpSearch::words(const QString& query) {
    return query.simplified().split(u' ', Qt::SkipEmptyParts);
}

QList<HelpSearch::Match> HelpSearch::find(const QString& query) const {
    const QStringList sought = words(query);
    QList<Match> matches;
    if (sought.isEmpty())
        return matches;
    for (const QString& file : m_files) {
        const Match found = match(file, m_pages.value(file), sought);
        if (found.hits > 0)
            matches << found;
    }
    std::stable_sort(matches.begin(), matches.end(),
                     [](const Match& a, const Match& b) { return a.hits > b.hits; });
    return matches;
}

// A page matches when it has every word; its hits are those of all words.
HelpSearch::Match HelpSearch::match(const QString& file, const Page& page,
                                    const QStringList& words) {
    Match found{file, page.title.isEmpty() ? file : page.title, 0, {}};
    QList<qsizetype> places;
    for (const QString& word : words) {
        const qsizetype before = places.size();
        for (qsizetype at = page.text.indexOf(word, 0, Qt::CaseInsensitive); at >= 0;
             at = page.text.indexOf(word, at + word.size(), Qt::CaseInsensitive))
            places << at;
        if (places.size() == before)
            return {file, found.title, 0, {}};
    }
    std::sort(places.begin(), places.end());
    found.hits = int(places.size());
    qsizetype shownUntil = -1;
    for (const qsizetype at : places) {
        if (found.excerpts.size() == kExcerpts)
            break;
        // A hit inside the last excerpt is already shown.
        if (at < shownUntil)
            continue;
        found.excerpts << excerpt(page.text, at, words);
        shownUntil = at + kAround;
    }
    return found;
}

// Whole words around the hit.
QString HelpSearch::excerpt(const QString& text, qsizetype at, const QStringList& words) {
    qsizetype from = std::max<qsizetype>(0, at - kAround);
    qsizetype to = std::min(text.size(), at + kAround);
    if (const qsizetype space = text.indexOf(u' ', from); from > 0 && space >= 0 && space < at)
        from = space + 1;
    if (const qsizetype space = text.lastIndexOf(u' ', to); to < text.size() && space > at)
        to = space;
    const QString cut = text.mid(from, to - from);
    return (from > 0 ? QStringLiteral("…") : QString()) + marked(cut, words) +
           (to < text.size() ? QStringLiteral("…") : QString());
}

QString HelpSearch::resultsPage(const QList<Match>& matches, const Texts& texts) {
    const QString heading = texts.heading.toHtmlEscaped();
    QString html = QStringLiteral("<html><head><meta charset=\"utf-8\"><title>") + heading +
                   QStringLiteral("</title><link rel=\"stylesheet\" type=\"text/css\" href=\"") +
                   texts.styleSheet.toString(QUrl::FullyEncoded).toHtmlEscaped() +
                   QStringLiteral("\"></head><body><h1>") + heading + QStringLiteral("</h1><p>") +
                   texts.summary.toHtmlEscaped() + QStringLiteral("</p>");
    if (matches.isEmpty())
        return html + QStringLiteral("</body></html>");
    html += QStringLiteral("<ul>");
    for (const Match& match : matches) {
        html += QStringLiteral("<li><p><a href=\"") +
                QUrl::fromLocalFile(match.file).toString(QUrl::FullyEncoded).toHtmlEscaped() +
                QStringLiteral("\">") + match.title.toHtmlEscaped() + QStringLiteral("</a> (") +
                texts.hits(match.hits).toHtmlEscaped() + QStringLiteral(")</p>");
        for (const QString& line : match.excerpts)
            html += QStringLiteral("<p>") + line + QStringLiteral("</p>");
        html += QStringLiteral("</li>");
    }
    return html + QStringLiteral("</ul></body></html>");
}
