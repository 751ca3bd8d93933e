#include "clsDrawObject.h"

#include "DomAttributes.h"

namespace {
using A = DomAttributes;

QString boolText(bool value) {
    return value ? QStringLiteral("True") : QStringLiteral("False");
}
bool isTrue(pugi::xml_node node, const char* name) {
    return A::text(node, name) == "True";
}
} // namespace

namespace {
DrawObjectProperties placed(const QString& typ, const QRect& rect, int zorder) {
    DrawObjectProperties p;
    p.typ = typ;
    p.x = rect.x();
    p.y = rect.y();
    p.w = rect.width();
    p.h = rect.height();
    p.zorder = zorder;
    return p;
}
} // namespace

DrawObjectProperties DrawObjectProperties::forImage(const QString& file, const QRect& rect,
                                                    int zorder) {
    DrawObjectProperties p = placed("image", rect, zorder);
    p.image = file;
    return p;
}

DrawObjectProperties DrawObjectProperties::forText(const QString& text, const QRect& rect,
                                                   int zorder) {
    DrawObjectProperties p = placed("text", rect, zorder);
    p.text = text;
    p.fontName = "Verdana";
    p.fontSize = 10;
    return p;
}

void clsDrawObject::Initialize(pugi::xml_node drawObjects) {
    m_element = drawObjects.append_child("DRAWOBJECT");
}

void clsDrawObject::LoadXmlNodes(pugi::xml_node element) {
    m_element = element;
}

QString clsDrawObject::name() const {
    return A::text(m_element, "name");
}
void clsDrawObject::setName(const QString& value) {
    A::set(m_element, "name", value);
}
QString clsDrawObject::typ() const {
    return A::text(m_element, "type");
}
void clsDrawObject::setTyp(const QString& value) {
    A::set(m_element, "type", value);
}
QString clsDrawObject::image() const {
    return A::text(m_element, "image");
}
void clsDrawObject::setImage(const QString& value) {
    A::set(m_element, "image", value);
}
QString clsDrawObject::Text() const {
    return A::text(m_element, "text");
}
void clsDrawObject::setText(const QString& value) {
    A::set(m_element, "text", value);
}
int clsDrawObject::XPos() const {
    return int(A::number(m_element, "x"));
}
void clsDrawObject::setXPos(int value) {
    A::set(m_element, "x", value);
}
int clsDrawObject::Ypos() const {
    return int(A::number(m_element, "y"));
}
void clsDrawObject::setYpos(int value) {
    A::set(m_element, "y", value);
}
int clsDrawObject::Width() const {
    return int(A::number(m_element, "w"));
}
void clsDrawObject::setWidth(int value) {
    A::set(m_element, "w", value);
}
int clsDrawObject::Height() const {
    return int(A::number(m_element, "h"));
}
void clsDrawObject::setHeight(int value) {
    A::set(m_element, "h", value);
}
QString clsDrawObject::fontName() const {
    return A::text(m_element, "fname");
}
void clsDrawObject::setFontName(const QString& value) {
    A::set(m_element, "fname", value);
}
double clsDrawObject::fontSize() const {
    return A::real(m_element, "fsize");
}
void clsDrawObject::setFontSize(double value) {
    A::set(m_element, "fsize", QString::number(value));
}
qint64 clsDrawObject::fontColor() const {
    return A::number(m_element, "fcolor");
}
void clsDrawObject::setFontColor(qint64 value) {
    A::set(m_element, "fcolor", value);
}
int clsDrawObject::fontAlign() const {
    return int(A::number(m_element, "falign"));
}
void clsDrawObject::setFontAlign(int value) {
    A::set(m_element, "falign", value);
}
int clsDrawObject::zorder() const {
    return int(A::number(m_element, "zorder"));
}
void clsDrawObject::setZorder(int value) {
    A::set(m_element, "zorder", value);
}

void clsDrawObject::SetAllPproperties(const DrawObjectProperties& p) {
    setName(p.name);
    setTyp(p.typ);
    setXPos(p.x);
    setYpos(p.y);
    setWidth(p.w);
    setHeight(p.h);
    setZorder(p.zorder);
    if (p.typ == QLatin1String("image")) {
        setImage(p.image);
    } else if (p.typ == QLatin1String("text")) {
        setText(p.text);
        setFontName(p.fontName);
        setFontSize(p.fontSize);
        setFontColor(p.fontColor);
        setFontAlign(p.fontAlign);
        A::set(m_element, "fbold", boolText(p.bold));
        A::set(m_element, "fitalic", boolText(p.italic));
        A::set(m_element, "funderline", boolText(p.underline));
        A::set(m_element, "fcharset", p.charset);
    }
}

DrawObjectProperties clsDrawObject::GetAllPproperties() const {
    DrawObjectProperties p;
    p.name = name();
    p.typ = typ();
    p.x = XPos();
    p.y = Ypos();
    p.w = Width();
    p.h = Height();
    p.zorder = zorder();
    if (p.typ == QLatin1String("image")) {
        p.image = image();
    } else if (p.typ == QLatin1String("text")) {
        p.text = Text();
        p.fontName = fontName();
        p.fontSize = fontSize();
        p.fontColor = fontColor();
        p.fontAlign = fontAlign();
        p.bold = isTrue(m_element, "fbold");
        p.italic = isTrue(m_element, "fitalic");
        p.underline = isTrue(m_element, "funderline");
        p.charset = int(A::number(m_element, "fcharset"));
    }
    return p;
}
