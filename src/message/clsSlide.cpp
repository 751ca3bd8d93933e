#include "clsSlide.h"

#include "AppPaths.h"
#include "DomAttributes.h"
#include "PlainFileName.h"

namespace {
using A = DomAttributes;
} // namespace

void clsSlide::Initialize(pugi::xml_node slides, pugi::xml_node reference, Placement placement,
                          int index, qint64 duration) {
    switch (placement) {
    case Placement::Append:
        m_element = slides.append_child("SLIDE");
        break;
    case Placement::Before:
        m_element = slides.insert_child_before("SLIDE", reference);
        break;
    case Placement::After:
        m_element = reference.next_sibling()
                        ? slides.insert_child_before("SLIDE", reference.next_sibling())
                        : slides.append_child("SLIDE");
        break;
    }
    A::set(m_element, "name", QStringLiteral("Slide"));
    m_element.append_child("IMAGE");
    setIndex(index);
    setDuration(duration);
    m_element.append_child("SOUND");
    m_element.append_child("TEXT");
    m_drawObjects.Initialize(m_element);
}

void clsSlide::LoadXmlNodes(pugi::xml_node element) {
    m_element = element;
    // Missing parts are made rather than reported, so every property has its element.
    A::child(element, "IMAGE");
    A::child(element, "SOUND");
    A::child(element, "TEXT");
    if (A::text(element, "name") != name()) {
        A::set(element, "name", name());
        setIndex(index());
    }
    m_drawObjects.LoadXmlNodes(A::child(element, "DRAWOBJECTS"));
}

// The name becomes part of file names (the slide picture, the exported
// text): one that is no plain name reads as the default, wherever it came from.
QString clsSlide::name() const {
    const QString stored = A::text(m_element, "name");
    return PlainFileName::isPlain(stored + QStringLiteral("_2147483647.bmp"))
               ? stored
               : QStringLiteral("Slide");
}
int clsSlide::index() const {
    return int(A::number(m_element, "index"));
}

void clsSlide::setIndex(int value) {
    A::set(m_element, "index", qint64(value));
    A::set(m_element.child("IMAGE"), "url", name() + "_" + QString::number(value));
}

qint64 clsSlide::Duration() const {
    return A::number(m_element, "dur");
}
void clsSlide::setDuration(qint64 ms) {
    A::set(m_element, "dur", ms);
}
qint64 clsSlide::SoundDuration() const {
    return A::number(m_element.child("SOUND"), "dur");
}
void clsSlide::setSoundDuration(qint64 ms) {
    A::set(m_element.child("SOUND"), "dur", ms);
}

QString clsSlide::SlideFileName() const {
    const QString own = AppPaths::extensionOf(m_drawObjects.BackPicture());
    const bool keepsAnimation = m_drawObjects.BackType() == clsDrawObjects::BackAnimated &&
                                !own.isEmpty() && PlainFileName::isPlain(own);
    return name() + "_" + QString::number(index()) +
           (keepsAnimation ? own : QStringLiteral(".bmp"));
}

QString clsSlide::Sound() const {
    return GetSoundAttribute("url");
}
void clsSlide::setSound(const QString& fileName) {
    SetSoundAttribute("url", fileName);
}
QString clsSlide::SoundName() const {
    return GetSoundAttribute("name");
}
void clsSlide::setSoundName(const QString& name) {
    SetSoundAttribute("name", name);
}

QString clsSlide::Text() const {
    QString text = GetTextAttribute("text");
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    text.replace(QLatin1String("\n"), QLatin1String("\r\n"));
    return text;
}

void clsSlide::setText(const QString& text) {
    SetTextAttribute("text", text);
}

void clsSlide::SetImageAttribute(const char* name, const QString& value) {
    A::set(m_element.child("IMAGE"), name, value);
}
QString clsSlide::GetImageAttribute(const char* name) const {
    return A::text(m_element.child("IMAGE"), name);
}
void clsSlide::SetSoundAttribute(const char* name, const QString& value) {
    A::set(m_element.child("SOUND"), name, value);
}
QString clsSlide::GetSoundAttribute(const char* name) const {
    return A::text(m_element.child("SOUND"), name);
}
void clsSlide::SetTextAttribute(const char* name, const QString& value) {
    A::set(m_element.child("TEXT"), name, value);
}
QString clsSlide::GetTextAttribute(const char* name) const {
    return A::text(m_element.child("TEXT"), name);
}
