#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <pugixml.hpp>

// Reads a SMIL presentation (ours or another tool's) into slides: per par its
// duration, picture, sound and text. Every file it names must lie in the
// presentation's folder and exist; the texts come from the texts index, or
// from the text file itself when the index does not know it.
class SmilImporter {
public:
    struct Slide {
        qint64 duration = 0;
        QString picture; // full paths of the files
        QString sound;
        QString text;
    };

    // False with error() saying why; nothing is read in part.
    bool read(const QString& smilPath, const QString& textsIndexPath);
    const QList<Slide>& slides() const { return m_slides; }
    QString error() const { return m_error; }

private:
    bool readTextsIndex(const QString& path);
    bool readPar(const pugi::xml_node& par);
    QString mediaPath(const QString& source);
    QString textOf(const QString& source);
    static QString ownFolderName(const QString& source);
    bool fail(const QString& why);

    QString m_folder;
    QHash<QString, QString> m_texts;
    QList<Slide> m_slides;
    QString m_error;
};
