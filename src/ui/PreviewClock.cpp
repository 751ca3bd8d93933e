#include "PreviewClock.h"

#include "AppGlobals.h"
#include "Clock.h"
#include "MessageDocument.h"
#include "VbFormat.h"
#include "clsMessage.h"

namespace {
bool loopWanted() {
    return AppGlobals::setting("preferences", "PreviewLoop", "0") == QLatin1String("1");
}
} // namespace

PreviewClock::PreviewClock(const MessageDocument& document, QObject* parent)
    : QObject(parent), m_document(document) {
    TimerPreviewPlay.setInterval(IntervalMs);
    connect(&TimerPreviewPlay, &QTimer::timeout, this, &PreviewClock::TimerPreviewPlay_Timer);
}

QString PreviewClock::timeText(qint64 elapsedMs, qint64 totalMs) {
    return VbFormat::format(double(elapsedMs) / 1000, "#0.0") + u'/' +
           VbFormat::format(double(totalMs) / 1000, "#0.0");
}

int PreviewClock::slideCount() const {
    const clsMessage* message = m_document.message();
    return message ? message->Slides().Count() : 0;
}

void PreviewClock::start() {
    if (!m_document.message() || isPlaying())
        return;
    m_loop = loopWanted();
    reset();
    m_lastTick = Clock::instance().tickCount();
    TimerPreviewPlay.start();
    emit started();
}

// Waiting for slide 1, with nothing played of the whole.
void PreviewClock::reset() {
    m_slide = 0;
    m_totalMs = m_document.message() ? m_document.message()->Slides().TotalDuration() : 0;
    m_elapsedMs = 0;
    emit timeChanged(m_elapsedMs, m_totalMs);
}

void PreviewClock::stop() {
    if (!isPlaying())
        return;
    TimerPreviewPlay.stop();
    m_slide = 0;
    emit stopped();
}

void PreviewClock::TimerPreviewPlay_Timer() {
    if (m_slide == 0) {
        if (slideCount() < 1)
            return stop();
        m_lastTick = Clock::instance().tickCount();
        return showSlide(1);
    }
    if (!m_document.message())
        return stop();
    const std::uint32_t now = Clock::instance().tickCount();
    // Unsigned arithmetic measures across the counter's wrap after 49 days.
    const std::uint32_t delta = now - m_lastTick;
    m_lastTick = now;
    m_elapsedMs += delta;
    emit timeChanged(m_elapsedMs, m_totalMs);
    m_leftMs -= delta;
    if (m_leftMs >= 1)
        return;
    if (m_slide + 1 <= slideCount())
        showSlide(m_slide + 1);
    else
        endReached();
}

void PreviewClock::showSlide(int slide) {
    m_slide = slide;
    m_leftMs = m_document.message()->Slides().Item(slide).Duration();
    emit slideDue(slide);
}

// Looping goes on only while the setting still asks for it: turning it off
// during a round makes that round the last.
void PreviewClock::endReached() {
    if (m_loop)
        m_loop = loopWanted();
    if (m_loop)
        reset();
    else
        stop();
}
