#pragma once

#include "MediaFolder.h"

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <optional>
#include <pugixml.hpp>

// Reads a SMIL presentation (ours or another tool's) into slides. A par is
// one slide; so is every timed media element standing on its own in the body
// or in a seq, with its own duration. Every file it names must lie in the
// presentation's folder (see MediaFolder) and exist; the texts come from the
// texts index, or from the text file itself when the index does not know it.
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
    // What was taken otherwise than it was written, one line each: slides
    // whose duration reads as 0 ms, media a slide had no place for.
    const QStringList& notes() const { return m_notes; }

private:
    enum class Kind { Picture, Sound, Text, None };

    bool readTextsIndex(const QString& path);
    void readSequence(const pugi::xml_node& container);
    void readItem(const pugi::xml_node& element);
    void readSlide(const pugi::xml_node& timed, const pugi::xml_node& media);
    void collectMedia(Slide& slide, const pugi::xml_node& container);
    void takeMedia(Slide& slide, const pugi::xml_node& element);
    void checkDuration(const pugi::xml_node& timed, const Slide& slide);
    static Kind kindOf(const pugi::xml_node& element);
    QString mediaPath(const QString& source);
    QString textOf(const QString& source, const QString& charset);
    static QString charsetOf(const pugi::xml_node& text);
    static bool load(pugi::xml_document& document, const QString& path, unsigned options);
    bool fail(const QString& why);

    QString m_folder;
    std::optional<MediaFolder> m_media;
    QHash<QString, QString> m_texts;
    QList<Slide> m_slides;
    QStringList m_notes;
    QString m_error;
};
