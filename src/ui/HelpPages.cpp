#include "HelpPages.h"

#include <QDir>
#include <QFileInfo>

// A language without contents is read in English throughout, so its
// pages and their links agree.
HelpPages::HelpPages(const QString& contentsFile)
    : m_folder(QFileInfo(contentsFile).absolutePath()),
      m_language(QFileInfo(contentsFile).completeBaseName()) {
    if (!contentsFile.isEmpty() && !QFileInfo(contents()).isFile())
        m_language = fallbackLanguage();
}

QString HelpPages::contents() const {
    const QString file = m_folder + u'/' + m_language + QStringLiteral(".html");
    return !m_language.isEmpty() && QFileInfo(file).isFile() ? file : QString();
}

QString HelpPages::languageFolder() const {
    return m_folder + u'/' + m_language + u'/';
}

QUrl HelpPages::url(const QString& topic) const {
    const QString page = topic.section(u'#', 0, 0);
    const QString part = topic.section(u'#', 1);
    const QString file = languageFolder() + page;
    // Only a page of the language's own folder: a topic never leads elsewhere.
    const bool own = !page.isEmpty() && !page.contains(u'/') && QFileInfo(file).isFile();
    if (!page.isEmpty() && !own)
        return QUrl::fromLocalFile(contents());
    QUrl shown = QUrl::fromLocalFile(own ? file : contents());
    if (!part.isEmpty())
        shown.setFragment(part);
    return shown;
}

QString HelpPages::topicOf(const QUrl& shown) const {
    if (!shown.isLocalFile())
        return QString();
    const QFileInfo file(shown.toLocalFile());
    const QString part = shown.hasFragment() ? u'#' + shown.fragment() : QString();
    const QString folder = QDir::cleanPath(file.absolutePath());
    if (folder == QDir::cleanPath(m_folder))
        return part;
    if (QFileInfo(folder).absolutePath() == QDir::cleanPath(m_folder))
        return file.fileName() + part;
    return QString();
}

QStringList HelpPages::all() const {
    const QString first = contents();
    if (first.isEmpty())
        return {};
    QStringList pages{first};
    const QDir folder(languageFolder());
    for (const QString& page :
         folder.entryList({QStringLiteral("*.html")}, QDir::Files, QDir::Name))
        pages << folder.filePath(page);
    return pages;
}
