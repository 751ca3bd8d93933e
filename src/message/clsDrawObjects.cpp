#include "clsDrawObjects.h"

#include "AppGlobals.h"
#include "AppPaths.h"
#include "DomAttributes.h"
#include "Mci.h"

#include <QFileInfo>

namespace {
using A = DomAttributes;

const QString kAlias = QStringLiteral("mciMedia");
constexpr int kReplySize = 512;
constexpr qint64 kGrey = 8421504;

pugi::xml_node createBackground(pugi::xml_node drawObjects, const QString& color) {
    pugi::xml_node background = drawObjects.append_child("BACKGROUND");
    A::set(background, "name", QStringLiteral("background"));
    A::set(background, "type", qint64(0));
    A::set(background, "color", color);
    return background;
}
} // namespace

void clsDrawObjects::Initialize(pugi::xml_node slide) {
    m_element = slide.append_child("DRAWOBJECTS");
    m_background = createBackground(
        m_element, AppGlobals::setting("preferences", "BackgroundColor", "16777215"));
}

void clsDrawObjects::LoadXmlNodes(pugi::xml_node drawObjects) {
    m_element = drawObjects;
    m_objects.clear();
    for (pugi::xml_node element : drawObjects.children("DRAWOBJECT")) {
        auto object = std::make_unique<clsDrawObject>();
        object->LoadXmlNodes(element);
        m_objects.push_back(std::move(object));
    }
    m_background = drawObjects.child("BACKGROUND");
    if (!m_background)
        m_background = createBackground(drawObjects, QString::number(kGrey));
}

void clsDrawObjects::Clear() {
    for (pugi::xml_node child = m_element.first_child(); child;) {
        const pugi::xml_node next = child.next_sibling();
        if (child != m_background)
            m_element.remove_child(child);
        child = next;
    }
    m_objects.clear();
}

clsDrawObject& clsDrawObjects::Item(int index) {
    return *m_objects.at(size_t(index - 1));
}

const clsDrawObject& clsDrawObjects::Item(int index) const {
    return *m_objects.at(size_t(index - 1));
}

void clsDrawObjects::Remove(int index) {
    m_element.remove_child(Item(index).DOMElement());
    m_objects.erase(m_objects.begin() + (index - 1));
}

clsDrawObject& clsDrawObjects::Add() {
    auto object = std::make_unique<clsDrawObject>();
    object->Initialize(m_element);
    m_objects.push_back(std::move(object));
    return *m_objects.back();
}

int clsDrawObjects::BackType() const {
    return int(A::number(m_background, "type"));
}
void clsDrawObjects::setBackType(int kind) {
    A::set(m_background, "type", qint64(kind));
}
qint64 clsDrawObjects::BackDuration() const {
    return A::number(m_background, "dur");
}
void clsDrawObjects::setBackDuration(qint64 ms) {
    A::set(m_background, "dur", ms);
}
qint64 clsDrawObjects::BackColor() const {
    return A::number(m_background, "color");
}
void clsDrawObjects::setBackColor(qint64 color) {
    A::set(m_background, "color", color);
}
QString clsDrawObjects::BackPicture() const {
    return A::text(m_background, "url");
}
void clsDrawObjects::setBackPicture(const QString& name) {
    A::set(m_background, "url", name);
}

int clsDrawObjects::KindOfFile(const QString& fileName) {
    static const QStringList still{"bmp", "tif", "tiff", "png", "jpg", "jpeg", "wbmp"};
    static const QStringList animated{"gif", "avi", "mp4"};
    const QString extension = AppPaths::extensionOf(fileName).mid(1).toLower();
    if (still.contains(extension))
        return BackStill;
    if (animated.contains(extension))
        return BackAnimated;
    return BackColorOnly;
}

qint64 clsDrawObjects::AnimationLength(const QString& fullPath) {
    QString reply;
    mciSendString("stop " + kAlias, &reply, kReplySize);
    if (mciSendString("open MPEGVideo!" + fullPath + " alias " + kAlias, &reply, kReplySize) != 0)
        return 0;
    mciSendString("set " + kAlias + " time format ms", &reply, kReplySize);
    if (mciSendString("status " + kAlias + " length", &reply, kReplySize) != 0)
        return 0;
    return reply.toLongLong();
}

void clsDrawObjects::closeDevice() {
    QString reply;
    mciSendString("close " + kAlias, &reply, kReplySize);
}
