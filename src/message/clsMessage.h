#pragma once

#include "UniqueNamer.h"
#include "clsSlides.h"

#include <QString>
#include <QStringList>
#include <functional>
#include <pugixml.hpp>

// A message: one XML document that is the only copy of the data, and the
// work folder that holds its files.
class clsMessage {
public:
    // Renders a flattened slide picture (from its draw objects, or from its
    // in-memory image when it has one) into the file at targetPath. The window
    // and the command line tool pass one; false means the file was not written.
    using SlideRenderer = std::function<bool(const clsSlide& slide, const QString& targetPath)>;

    clsMessage();
    clsMessage(const clsMessage&) = delete;
    clsMessage& operator=(const clsMessage&) = delete;

    // Loads xmlPath (empty for a new message) or, when it cannot be read,
    // starts the empty skeleton. workFolder ends with "/".
    void Initialize(const QString& xmlPath, const QString& name, const QString& workFolder);

    // Takes xml (a document as this class writes it) in place of the current
    // document and rewraps the slides; false, with nothing changed, when it
    // cannot be parsed or has no ROOT. In-memory pictures are dropped.
    bool ReplaceDocument(const QByteArray& xml);
    // The document as UTF-8 without indentation, so that ReplaceDocument of it
    // gives the same bytes back.
    QByteArray DocumentXml() const;

    // Whether Initialize read a message XML (rather than starting the skeleton).
    bool wasLoaded() const { return m_loaded; }
    pugi::xml_document& DOMParent() { return m_document; }
    QString version() const;
    QString MMSFileList() const;
    void setMMSFileList(const QString& list);
    QString name() const;
    void setName(const QString& name);
    // How the send form encodes the slide pictures of a message fitted to a
    // content class: a picture format's extension ("jpg") and a JPEG quality.
    // Empty and 0 leave both to the settings.
    QString sendImageFormat() const;
    int sendJpgQuality() const;
    void setSendPictureEncoding(const QString& extension, int jpgQuality);
    QString Created() const;
    void setCreated(const QString& stamp);
    QString Path() const { return m_path; }
    void setPath(const QString& workFolder) { m_path = workFolder; }
    clsSlides& Slides() { return m_slides; }
    const clsSlides& Slides() const { return m_slides; }
    qint64 DefaultDuration() const { return m_slides.DefaultDuration(); }
    void setDefaultDuration(qint64 ms) { m_slides.setDefaultDuration(ms); }
    qint64 DefaultColor() const { return m_slides.DefaultColor(); }
    void setDefaultColor(qint64 color) { m_slides.setDefaultColor(color); }

    bool isChanged() const { return m_changed; }
    void setChanged(bool changed) { m_changed = changed; }

    // Every media file the slides name (sounds, backgrounds, pictures), as stored.
    QStringList MediaNames() const;

    void DeletePicture(int index);
    void DeleteText(int index);
    void DeleteSound(int index);
    void DeleteSlide(int index);
    // Copies everything of source into target; media files are copied too,
    // under fresh names.
    void CopySlide(const clsSlide& source, clsSlide& target);

    void setSlideRenderer(SlideRenderer renderer) { m_renderer = std::move(renderer); }
    // Writes the XML to path, then the slide files into the work folder.
    bool SaveMessage(const QString& path);
    // The XML alone, as often as the user edits: no slide picture is encoded.
    bool SaveXml(const QString& path);
    QString lastError() const { return m_lastError; }

private:
    bool loadFile(const QString& xmlPath);
    void startSkeleton();
    // Finds ROOT and MESSAGE (creating MESSAGE named name when missing) and
    // wraps the slides.
    void attachDocument(const QString& name);
    QString copyMedia(const QString& prefix, const QString& fileName);
    bool writeSlideFile(const clsSlide& slide);
    void removeSlideFiles();

    pugi::xml_document m_document;
    pugi::xml_node m_root;
    pugi::xml_node m_message;
    clsSlides m_slides;
    QString m_path;
    bool m_changed = false;
    bool m_loaded = false;
    UniqueNamer m_namer;
    SlideRenderer m_renderer;
    QString m_lastError;
};
