#pragma once

#include <QString>
#include <QStringList>

// A binary MMS file (m-send-req or m-retrieve-conf) made ready for the SMIL
// import: its parts written into a folder under safe names, its presentation
// beside them (see MmsPresentation). A file that is no such message, or whose
// parts show nothing, is refused; what could not be read of one that shows
// something is said in notes().
class MmsImporter {
public:
    // Whether the file begins as a binary MMS with content does; told by its
    // bytes, whatever it is called.
    static bool isBinaryMms(const QString& path);

    // folder is new and private. False with error() saying why.
    bool read(const QString& path, const QString& folder);
    // The presentation written into the folder.
    QString presentation() const { return m_presentation; }
    QString subject() const { return m_subject; }
    const QStringList& notes() const { return m_notes; }
    QString error() const { return m_error; }

private:
    bool refuse(const QString& why);

    QString m_presentation;
    QString m_subject;
    QStringList m_notes;
    QString m_error;
};
