#pragma once

#include "MmsPartReader.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

// The parts of a binary MMS as files of one folder, for a presentation to
// name. Each is written under a name that is safe there whatever the message
// calls it: a plain file name, unique in any letter case, with the extension
// of its content when it has none; texts are decoded by their charset and
// written as UTF-8. Each is found again by the values presentations give in
// src: "cid:" and a Content-ID, or a Content-Location.
class MmsPartFiles {
public:
    enum class Kind { Picture, Sound, Text, Smil, Other };
    // By its content type, or by its bytes when the type says nothing.
    static Kind kindOf(const MmsPartReader::Part& part);

    // Writes every part that is no SMIL into folder (new and private), under
    // none of the reserved names. False with *why when a file cannot be written.
    bool write(const QString& folder, const QList<MmsPartReader::Part>& parts,
               const QStringList& reserved, QString* why);
    // The name part index was written under; "" for a part not written.
    QString fileName(int index) const;
    // Whether part index was written as decoded text.
    bool isText(int index) const;
    // The part a src value names: "cid:" and a Content-ID (or, failing that,
    // a Content-Location), else a Content-Location as written or
    // percent-decoded, in any letter case, or by its last path segment, else
    // a Content-ID written bare. -1 when no written part fits.
    int find(const QString& source) const;
    // How notes name part index: by Content-Location, Content-ID or number.
    QString label(int index) const;

private:
    struct Entry {
        QString location;
        QString contentId;
        QString file;
        bool text = false;
    };
    enum class Field { Location, ContentId, LastSegment };

    int findName(const QString& value) const;
    int match(Field field, const QString& value, Qt::CaseSensitivity sensitivity) const;
    QString safeName(const MmsPartReader::Part& part, Kind kind, int index);
    bool writeFile(const QString& path, const QByteArray& bytes, QString* why) const;

    QList<Entry> m_entries;
    QSet<QString> m_taken; // case-folded names
};
