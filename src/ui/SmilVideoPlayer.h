#pragma once

#include "SmilTimeline.h"

#include <QImage>
#include <QObject>

class QMediaPlayer;
class QVideoFrame;
class QVideoSink;

// Plays the video of a presentation's item through Qt Multimedia and keeps
// its latest picture for the presentation player to draw into the item's
// area. Only one video plays at a time, as on a phone. Its sound is not
// played: the presentation's own sounds have the speaker.
class SmilVideoPlayer : public QObject {
    Q_OBJECT
public:
    explicit SmilVideoPlayer(QObject* parent = nullptr);
    ~SmilVideoPlayer() override;

    // Plays item from its beginning, unless it already plays.
    void play(const SmilTimeline::Item& item);
    void stop();
    bool isActive() const { return !m_file.isEmpty(); }
    // The latest picture, or none before the first arrives.
    const QImage& picture() const { return m_picture; }
    QRect area() const { return m_area; }

signals:
    void pictureChanged();
    // The video cannot be played; why is for the user.
    void failed(const QString& why);

private:
    void takeFrame(const QVideoFrame& frame);

    QMediaPlayer* m_player;
    QVideoSink* m_sink;
    QString m_file;
    qint64 m_start = -1;
    QRect m_area;
    QImage m_picture;
};
