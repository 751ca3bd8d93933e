#pragma once

#include <QRect>
#include <QString>
#include <pugixml.hpp>

// Every persistent field of a draw object, in the order they are written.
struct DrawObjectProperties {
    QString name;
    QString typ; // "image" or "text"
    int x = 0;
    int y = 0;
    int w = 0;
    int h = 0;
    int zorder = 0;
    QString image; // image objects: the picture's work-folder file name
    QString text;  // text objects from here on
    QString fontName;
    double fontSize = 0;
    qint64 fontColor = 0;
    int fontAlign = 0;
    bool bold = false;
    bool italic = false;
    bool underline = false;
    int charset = 0;

    // An image object showing a work-folder picture in a rectangle.
    static DrawObjectProperties forImage(const QString& file, const QRect& rect, int zorder = 0);
    // A text object in a rectangle, in the font a new text starts with.
    static DrawObjectProperties forText(const QString& text, const QRect& rect, int zorder = 0);
};

// One picture or text placed on a slide picture: a view of its DRAWOBJECT
// element, so each property reads or writes its attribute.
class clsDrawObject {
public:
    // An object for a new element, appended to DRAWOBJECTS.
    void Initialize(pugi::xml_node drawObjects);
    // An object for an element that is already there.
    void LoadXmlNodes(pugi::xml_node element);

    QString name() const;
    void setName(const QString& value);
    QString typ() const;
    void setTyp(const QString& value);
    QString image() const;
    void setImage(const QString& value);
    QString Text() const;
    void setText(const QString& value);
    int XPos() const;
    void setXPos(int value);
    int Ypos() const;
    void setYpos(int value);
    int Width() const;
    void setWidth(int value);
    int Height() const;
    void setHeight(int value);
    QString fontName() const;
    void setFontName(const QString& value);
    double fontSize() const;
    void setFontSize(double value);
    qint64 fontColor() const;
    void setFontColor(qint64 value);
    int fontAlign() const;
    void setFontAlign(int value);
    int zorder() const;
    void setZorder(int value);

    void SetAllPproperties(const DrawObjectProperties& properties);
    DrawObjectProperties GetAllPproperties() const;

    pugi::xml_node DOMElement() const { return m_element; }

private:
    pugi::xml_node m_element;
};
