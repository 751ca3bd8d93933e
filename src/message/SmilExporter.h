#pragma once

#include "ImageWriter.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>
#include <pugixml.hpp>

class clsMessage;
class clsSlide;

// Writes a message as a SMIL file set into a folder: the presentation, the
// texts index, one text file per slide text and the slides' pictures and
// sounds. The template flavour uses the names a phone expects ("mms.smil",
// "texts.xml"); otherwise a base name other than "mms" numbers every file after
// it (base_001.jpg, ...), so several exports can share one folder.
class SmilExporter {
public:
    using Progress = std::function<void(int slide, int count)>;
    // The files one slide went out as, by name; empty for what it lacks.
    struct SlideFiles {
        int slide = 0;
        QString picture;
        QString sound;
        QString text;
    };

    SmilExporter(QString folder, QString baseName, bool templateFlavour, int durationFormat);

    // False with status() saying why; files() lists what was written so far.
    bool run(clsMessage& message, const Progress& progress);
    QString status() const { return m_status; }
    QStringList files() const { return m_files; }
    // Slides left out for lasting less than 1 ms, by number.
    QStringList skippedSlides() const { return m_skipped; }
    // Every slide that went out, in order.
    QList<SlideFiles> slideFiles() const { return m_slideFiles; }
    QString presentationName() const;
    QString textsIndexName() const;

private:
    // A message fitted to a content class brings its own picture encoding.
    void usePictureEncoding(const clsMessage& message);
    bool exportSlide(const clsSlide& slide, const QString& workFolder, pugi::xml_node par);
    bool exportPicture(const clsSlide& slide, const QString& workFolder, pugi::xml_node par);
    bool exportSound(const clsSlide& slide, const QString& workFolder, pugi::xml_node par);
    bool exportText(const clsSlide& slide, pugi::xml_node par);
    QString fileName(int slide, const QString& extension);
    bool fail(const QString& key, const QString& fallback, const QString& reason);

    QString m_folder;
    QString m_baseName;
    bool m_numbered;
    int m_durationFormat;
    int m_counter = 0;
    int m_imageFormat;
    ImageWriter::Settings m_pictureSettings;
    pugi::xml_document m_smil;
    pugi::xml_document m_texts;
    QStringList m_files;
    QStringList m_skipped;
    QList<SlideFiles> m_slideFiles;
    QString m_status;
};
