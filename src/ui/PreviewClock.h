#pragma once

#include <QObject>
#include <QTimer>
#include <cstdint>

class MessageDocument;

// Plays the message slide after slide on the program's tick count: each tick
// adds the ticks gone by since the last one, so the time shown never drifts
// from the clock, and a slide ends on the first tick after its time is used
// up. At the end the message starts again while "PreviewLoop" is "1".
class PreviewClock : public QObject {
    Q_OBJECT
public:
    static constexpr int IntervalMs = 50;

    explicit PreviewClock(const MessageDocument& document, QObject* parent = nullptr);

    bool isPlaying() const { return TimerPreviewPlay.isActive(); }
    // The slide shown (1-based), 0 while waiting for the first tick.
    int slide() const { return m_slide; }

    // "1.5/9.0": the seconds played and the whole, "#0.0" each.
    static QString timeText(qint64 elapsedMs, qint64 totalMs);

    void start();
    void stop();
    // One tick of the timer; public so that a test steps the clock itself.
    void TimerPreviewPlay_Timer();

signals:
    void started();
    void stopped();
    // Slide (1-based) is due: its picture, text and sound.
    void slideDue(int slide);
    // Milliseconds played and the message's length, on every tick.
    void timeChanged(qint64 elapsedMs, qint64 totalMs);

private:
    void reset();
    void showSlide(int slide);
    void endReached();
    int slideCount() const;

    const MessageDocument& m_document;
    QTimer TimerPreviewPlay;
    int m_slide = 0;
    qint64 m_totalMs = 0;
    qint64 m_elapsedMs = 0;
    qint64 m_leftMs = 0;
    std::uint32_t m_lastTick = 0;
    bool m_loop = false;
};
