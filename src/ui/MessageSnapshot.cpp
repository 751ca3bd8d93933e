#include "MessageSnapshot.h"

#include "clsMessage.h"

MessageSnapshot MessageSnapshot::take(const clsMessage& message, int currentSlide) {
    MessageSnapshot state;
    state.m_xml = message.DocumentXml();
    state.m_currentSlide = currentSlide;
    // QImage shares its pixels, so keeping every slide's pictures costs little.
    for (const auto& slide : message.Slides())
        state.m_pictures.append({slide->image(), slide->DrawObjects().BackGround()});
    return state;
}

bool MessageSnapshot::restore(clsMessage& message) const {
    if (!message.ReplaceDocument(m_xml))
        return false;
    clsSlides& slides = message.Slides();
    for (int i = 0; i < slides.Count() && i < m_pictures.size(); ++i) {
        clsSlide& slide = slides.Item(i + 1);
        slide.setImage(m_pictures[i].image);
        slide.DrawObjects().setBackGround(m_pictures[i].background);
    }
    return true;
}
