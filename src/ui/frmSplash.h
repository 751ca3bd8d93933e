#pragma once

#include <QPixmap>
#include <QWidget>

class QLabel;
class QTimer;

// The start-up picture. It closes itself after a moment, or at a click.
class frmSplash : public QWidget {
    Q_OBJECT
public:
    explicit frmSplash(QWidget* parent = nullptr);

    // A picture file to show instead of the drawn one; video is not played.
    void setVideo(const QString& file);
    void startPlayback(int durationMs = kDefaultDurationMs);
    bool isClosing() const { return m_closing; }

    static constexpr int kDefaultDurationMs = 2500;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    void finish();
    static QPixmap drawnPicture();

    QPixmap m_picture;
    QLabel* lblLoading;
    QTimer* m_timer;
    bool m_closing = false;
};
