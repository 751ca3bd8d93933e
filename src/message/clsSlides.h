#pragma once

#include "clsSlide.h"

#include <memory>
#include <pugixml.hpp>
#include <vector>

// The ordered slides of a message. Indexes are 1-based and every slide's
// index is kept equal to its position.
class clsSlides {
public:
    void Initialize(pugi::xml_node slides);
    // Wraps every SLIDE element, in document order.
    void LoadXmlNodes();

    qint64 DefaultDuration() const { return m_defaultDuration; }
    void setDefaultDuration(qint64 ms) { m_defaultDuration = ms; }
    qint64 DefaultColor() const { return m_defaultColor; }
    void setDefaultColor(qint64 color) { m_defaultColor = color; }

    // Forgets the slide objects; the document stays as it is.
    void Clear() { m_slides.clear(); }
    clsSlide& Item(int index);
    const clsSlide& Item(int index) const;
    int Count() const { return int(m_slides.size()); }
    // How long the message plays: every slide's duration added up, in ms.
    qint64 TotalDuration() const;
    void Remove(int index);
    // Takes slide from out of the list and puts it at position to, then
    // renumbers; the slide keeps its contents and its in-memory picture.
    void Move(int from, int to);
    clsSlide& Add();
    clsSlide& AddBefore(int index);
    clsSlide& AddAfter(int index);
    auto begin() const { return m_slides.begin(); }
    auto end() const { return m_slides.end(); }

private:
    clsSlide& insert(int position, pugi::xml_node reference, clsSlide::Placement placement);
    void renumber();

    pugi::xml_node m_element;
    std::vector<std::unique_ptr<clsSlide>> m_slides;
    qint64 m_defaultDuration = 0;
    qint64 m_defaultColor = 0;
};
