#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>

// Where the help pages of a language are: its contents page is the help
// file the settings name ("<folder>/<code>.html"), its other pages lie in
// "<folder>/<code>/". A page that is missing gives way to the contents of
// the language, and a language without contents gives way to English.
class HelpPages {
public:
    explicit HelpPages(const QString& contentsFile);

    // The contents page to show, or "" when there is no help at all.
    QString contents() const;
    // The address of a topic: "settings.html#phone", "#help" (a part of the
    // contents page) or "" (the contents page).
    QUrl url(const QString& topic) const;
    // The topic a shown address stands for in any language of this help, so
    // the same page can be shown in another; "" for a page outside the help.
    QString topicOf(const QUrl& shown) const;
    // Every page of the language, its contents page first; what the search reads.
    QStringList all() const;

    static QString fallbackLanguage() { return QStringLiteral("en-us"); }

private:
    QString languageFolder() const;

    QString m_folder;
    QString m_language;
};
