#pragma once

#include "clsDrawObject.h"

#include <QImage>
#include <QString>
#include <memory>
#include <pugixml.hpp>
#include <vector>

// The picture of a slide: its BACKGROUND (a colour, a still picture or an
// animation) and the draw objects placed on it, in document order.
class clsDrawObjects {
public:
    enum BackgroundKind { BackColorOnly = 0, BackStill = 1, BackAnimated = 2 };

    // A new slide: DRAWOBJECTS and a BACKGROUND in the colour of the settings.
    void Initialize(pugi::xml_node slide);
    // An existing slide; a missing BACKGROUND is made grey.
    void LoadXmlNodes(pugi::xml_node drawObjects);

    // Removes every draw object; the background stays.
    void Clear();
    clsDrawObject& Item(int index); // 1-based
    const clsDrawObject& Item(int index) const;
    int Count() const { return int(m_objects.size()); }
    void Remove(int index);
    clsDrawObject& Add();
    auto begin() const { return m_objects.begin(); }
    auto end() const { return m_objects.end(); }

    int BackType() const;
    void setBackType(int kind);
    qint64 BackDuration() const;
    void setBackDuration(qint64 ms);
    qint64 BackColor() const;
    void setBackColor(qint64 color);
    // The background file's name in the work folder ("" for none).
    QString BackPicture() const;
    void setBackPicture(const QString& fileName);
    // The background as a loaded picture, kept in memory only.
    const QImage& BackGround() const { return m_backGround; }
    void setBackGround(const QImage& picture) { m_backGround = picture; }

    // The kind a background file has by its extension: 1 for still pictures,
    // 2 for animations and videos, 0 for anything else.
    static int KindOfFile(const QString& fileName);
    // Measures an animation or video through the media device "mciMedia";
    // 0 when it cannot be measured. The device stays open until closeDevice().
    static qint64 AnimationLength(const QString& fullPath);
    static void closeDevice();

    pugi::xml_node DOMElement() const { return m_element; }

private:
    pugi::xml_node m_element;
    pugi::xml_node m_background;
    std::vector<std::unique_ptr<clsDrawObject>> m_objects;
    QImage m_backGround;
};
