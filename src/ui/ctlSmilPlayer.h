#pragma once

#include "SlideSoundPlayer.h"
#include "SmilTimeline.h"
#include "SmilVideoPlayer.h"

#include <QImage>
#include <QTimer>
#include <QWidget>
#include <memory>

class SmilFrameRenderer;

// Plays a SMIL presentation, ours or another program's: its pictures and
// texts in their regions, its sounds and its videos, each for its time on
// the program's clock (a video that cannot play shows its first picture). It knows nothing of the
// window that holds it: that window opens a presentation, plays and stops it, and hears when it
// stopped.
class ctlSmilPlayer : public QWidget {
    Q_OBJECT
public:
    explicit ctlSmilPlayer(QWidget* parent = nullptr);
    ~ctlSmilPlayer() override;

    // Stops what plays and shows the presentation's first picture. False when
    // the file is no presentation; problems() then says why.
    bool open(const QString& smilPath);
    void play();
    // Stops the pictures and the sound; emits stopped() when it was playing.
    void stop();
    bool isPlaying() const { return m_timer.isActive(); }

    qint64 position() const { return m_position; }
    qint64 duration() const { return m_timeline.duration(); }
    // What could not be shown or played, in the user's language.
    QStringList problems() const;
    // The picture shown now, at the presentation's own size, with the
    // video's latest picture in its area.
    const QImage& frame() const { return m_shown; }
    QSize sizeHint() const override;

signals:
    // Playing ended: at the end of the presentation or by stop().
    void stopped();
    void positionChanged(qint64 ms, qint64 total);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void tick();
    void showAt(qint64 ms);
    void startSounds(qint64 after, qint64 upTo);
    void followVideo(qint64 ms);
    void compose();
    void addProblem(const QString& why);

    SmilTimeline m_timeline;
    std::unique_ptr<SmilFrameRenderer> m_renderer;
    QList<qint64> m_changes;
    qsizetype m_shownChange = -1;
    QImage m_frame;
    QImage m_shown;
    QTimer m_timer;
    std::uint32_t m_startTick = 0;
    qint64 m_position = 0;
    SlideSoundPlayer m_sound;
    SmilVideoPlayer m_video;
    QStringList m_playProblems;
};
