#pragma once

#include "WaveformPeaks.h"

#include <QColor>
#include <QImage>
#include <QWidget>

class PcmSound;

// A track over a sound's waveform with two thumbs, A (start) and B (end),
// that mark the part to keep, and a progress bar drawn in the track while
// that part plays. A thumb is dragged with the mouse; from the keyboard the
// arrows move the chosen thumb (Tab or the A and B keys choose it) by ten
// milliseconds, with Shift by a tenth of a second. A never reaches B.
class ctlAudioSlider : public QWidget {
    Q_OBJECT
public:
    enum Thumb { ThumbA, ThumbB };

    explicit ctlAudioSlider(QWidget* parent = nullptr);

    void SetMinMaxValue(qint64 minimum, qint64 maximum);
    qint64 minimum() const { return m_min; }
    qint64 maximum() const { return m_max; }
    qint64 ValueA() const { return m_a; }
    qint64 ValueB() const { return m_b; }
    // Each keeps the thumb between the bounds and short of the other thumb.
    void setValueA(qint64 value);
    void setValueB(qint64 value);
    // Both at once, A kept within the bounds first and B after it.
    void setValues(qint64 a, qint64 b);
    Thumb currentThumb() const { return m_current; }
    void setCurrentThumb(Thumb thumb);

    void SetProgress(qint64 value);
    void setProgressVisible(bool visible);
    bool ProgressVisible() const { return m_progressVisible; }
    void setProgressColor(const QColor& colour);
    void SetBackground(const QColor& colour);
    void SetBackground(const QImage& picture);
    // The outline drawn in the track.
    void setWaveform(const PcmSound& sound);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    void valuesChanged(qint64 a, qint64 b);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void focusInEvent(QFocusEvent* event) override;

private:
    QRect track() const;
    double toX(qint64 value) const;
    qint64 toValue(double x) const;
    void moveThumb(Thumb thumb, qint64 value);
    void apply(qint64 a, qint64 b);
    void paintWaveform(QPainter& painter, const QRect& area) const;
    void paintThumb(QPainter& painter, Thumb thumb) const;
    void describe();

    qint64 m_min = 0;
    qint64 m_max = 1000;
    qint64 m_a = 0;
    qint64 m_b = 1000;
    qint64 m_progress = 0;
    bool m_progressVisible = false;
    QColor m_progressColor{40, 120, 220, 110};
    QColor m_background{250, 250, 250};
    QImage m_backPicture;
    WaveformPeaks m_peaks;
    Thumb m_current = ThumbA;
    Thumb m_dragged = ThumbA;
};
