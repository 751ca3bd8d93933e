#include "clsSlides.h"

void clsSlides::Initialize(pugi::xml_node slides) {
    m_element = slides;
    m_slides.clear();
}

void clsSlides::LoadXmlNodes() {
    m_slides.clear();
    for (pugi::xml_node element : m_element.children("SLIDE")) {
        auto slide = std::make_unique<clsSlide>();
        slide->LoadXmlNodes(element);
        m_slides.push_back(std::move(slide));
    }
}

clsSlide& clsSlides::Item(int index) {
    return *m_slides.at(size_t(index - 1));
}
const clsSlide& clsSlides::Item(int index) const {
    return *m_slides.at(size_t(index - 1));
}

void clsSlides::Remove(int index) {
    m_element.remove_child(Item(index).DOMElement());
    m_slides.erase(m_slides.begin() + (index - 1));
    renumber();
}

qint64 clsSlides::TotalDuration() const {
    qint64 total = 0;
    for (const auto& slide : m_slides)
        total += slide->Duration();
    return total;
}

void clsSlides::Move(int from, int to) {
    if (from == to)
        return;
    const pugi::xml_node moving = Item(from).DOMElement();
    const pugi::xml_node anchor = Item(to).DOMElement();
    if (from < to)
        m_element.insert_move_after(moving, anchor);
    else
        m_element.insert_move_before(moving, anchor);
    auto slide = std::move(m_slides[size_t(from - 1)]);
    m_slides.erase(m_slides.begin() + (from - 1));
    m_slides.insert(m_slides.begin() + (to - 1), std::move(slide));
    renumber();
}

clsSlide& clsSlides::Add() {
    return insert(Count() + 1, {}, clsSlide::Placement::Append);
}

clsSlide& clsSlides::AddBefore(int index) {
    clsSlide& slide = insert(index, Item(index).DOMElement(), clsSlide::Placement::Before);
    renumber();
    return slide;
}

clsSlide& clsSlides::AddAfter(int index) {
    clsSlide& slide = insert(index + 1, Item(index).DOMElement(), clsSlide::Placement::After);
    renumber();
    return slide;
}

clsSlide& clsSlides::insert(int position, pugi::xml_node reference, clsSlide::Placement placement) {
    auto slide = std::make_unique<clsSlide>();
    slide->Initialize(m_element, reference, placement, Count() + 1, m_defaultDuration);
    return **m_slides.insert(m_slides.begin() + (position - 1), std::move(slide));
}

void clsSlides::renumber() {
    int index = 1;
    for (const auto& slide : m_slides)
        slide->setIndex(index++);
}
