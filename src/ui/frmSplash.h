#pragma once

#include <QPixmap>
#include <QWidget>

class QLabel;
class QTimer;

class QMediaPlayer;
class QMovie;
class QVideoFrame;
class QVideoSink;

// The start-up picture. It closes itself after a moment, or at a click. A
// video or an animated picture the settings name plays once instead, for
// as long as it lasts but not much longer than the program takes to start.
class frmSplash : public QWidget {
    Q_OBJECT
public:
    explicit frmSplash(QWidget* parent = nullptr);

    // A video, an animated picture or a still picture to show instead of
    // the drawn one; a file that none of these reads leaves the drawn one.
    void setVideo(const QString& file);
    void startPlayback(int durationMs = kDefaultDurationMs);
    bool isClosing() const { return m_closing; }
    // What is shown now.
    const QPixmap& picture() const { return m_picture; }

    static constexpr int kDefaultDurationMs = 2500;
    static constexpr int kLongestPlayMs = 10000;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    void finish();
    void show(const QPixmap& picture);
    bool playMovie(const QString& file);
    void playVideo(const QString& file);
    void takeFrame(const QVideoFrame& frame);
    static QPixmap drawnPicture();

    QPixmap m_picture;
    QLabel* lblLoading;
    QTimer* m_timer;
    QMovie* m_movie = nullptr;
    int m_framesPlayed = 0;
    QMediaPlayer* m_player = nullptr;
    QVideoSink* m_sink = nullptr;
    bool m_closing = false;
};
