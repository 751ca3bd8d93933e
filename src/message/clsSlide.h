#pragma once

#include "clsDrawObjects.h"

#include <QImage>
#include <QString>
#include <pugixml.hpp>

// One slide: its picture, sound, text and duration, read from and written to
// its SLIDE element.
class clsSlide {
public:
    enum class Placement { Append, Before, After };

    // A new slide element placed relative to reference (ignored for Append).
    void Initialize(pugi::xml_node slides, pugi::xml_node reference, Placement placement, int index,
                    qint64 duration);
    // A slide for an element that is already there.
    void LoadXmlNodes(pugi::xml_node element);

    QString name() const;
    int index() const;
    // Also names the slide picture: IMAGE url becomes name + "_" + index.
    void setIndex(int value);
    qint64 Duration() const;
    void setDuration(qint64 ms);
    qint64 SoundDuration() const;
    void setSoundDuration(qint64 ms);
    // name + "_" + index + ".bmp", or the background's own extension for an
    // animated background, which is kept as the slide file.
    QString SlideFileName() const;

    const QImage& image() const { return m_image; }
    void setImage(const QImage& picture) { m_image = picture; }

    qint64 Color() const { return m_drawObjects.BackColor(); }
    void setColor(qint64 color) { m_drawObjects.setBackColor(color); }
    QString Sound() const;
    void setSound(const QString& fileName);
    QString SoundName() const;
    void setSoundName(const QString& name);
    // Always with CR LF line ends, however it was stored.
    QString Text() const;
    void setText(const QString& text);

    void SetImageAttribute(const char* name, const QString& value);
    QString GetImageAttribute(const char* name) const;
    void SetSoundAttribute(const char* name, const QString& value);
    QString GetSoundAttribute(const char* name) const;
    void SetTextAttribute(const char* name, const QString& value);
    QString GetTextAttribute(const char* name) const;

    clsDrawObjects& DrawObjects() { return m_drawObjects; }
    const clsDrawObjects& DrawObjects() const { return m_drawObjects; }
    pugi::xml_node DOMElement() const { return m_element; }

private:
    pugi::xml_node m_element;
    clsDrawObjects m_drawObjects;
    QImage m_image;
};
