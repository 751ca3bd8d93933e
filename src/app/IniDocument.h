#pragma once

#include <QString>
#include <QStringList>
#include <optional>

// The text of an INI file, kept line by line so that writing one value leaves
// comments and the order of everything else as it was. Section and key names
// match without regard to case, as profile files always have.
class IniDocument {
public:
    // A missing file reads as empty; text that is not UTF-8 is read as Latin-1.
    static IniDocument load(const QString& path);
    bool save(const QString& path) const;

    QStringList sectionNames() const;
    // The "key=value" lines of a section, blank lines and comments left out.
    QStringList sectionLines(const QString& section) const;
    std::optional<QString> value(const QString& section, const QString& key) const;

    void setValue(const QString& section, const QString& key, const QString& value);
    void replaceSection(const QString& section, const QStringList& lines);

private:
    struct Section {
        QString name;
        QStringList lines;
    };
    Section* findSection(const QString& name);
    const Section* findSection(const QString& name) const;
    Section& sectionForWriting(const QString& name);

    QList<Section> m_sections; // the first one, unnamed, holds lines before any header
};
