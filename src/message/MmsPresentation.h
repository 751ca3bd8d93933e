#pragma once

#include "MmsPartFiles.h"
#include "MmsPartReader.h"

#include <QSet>
#include <QString>
#include <QStringList>
#include <pugixml.hpp>

// The presentation of a binary MMS, written beside its part files for the
// SMIL import to read: the message's own SMIL (its start part, else its first
// SMIL part) with every src turned to the file its part was written to; an
// element naming a part the message lacks is left out, and said. A message
// without a readable SMIL gets one made: a slide for each picture with the
// texts and sounds that follow it, those before the first picture going to
// the first slide; a slide lasts the default slide duration, or its sound
// when that is longer.
class MmsPresentation {
public:
    MmsPresentation(const MmsPartReader& message, const MmsPartFiles& files)
        : m_message(message), m_files(files) {}

    // False with *why when the file cannot be written.
    bool write(const QString& path, QString* why);
    // Whether any part is on a slide.
    bool showsAnything() const { return !m_used.isEmpty(); }
    // What was left out, one line each.
    const QStringList& notes() const { return m_notes; }

private:
    int startPart() const;
    bool rewrite(pugi::xml_document& smil, const MmsPartReader::Part& part);
    void build(pugi::xml_document& smil);
    void addSlide(pugi::xml_node body, const QList<int>& parts);
    void use(pugi::xml_node element, int part);
    void noteUnused();

    const MmsPartReader& m_message;
    const MmsPartFiles& m_files;
    QSet<int> m_used;
    QStringList m_notes;
};
