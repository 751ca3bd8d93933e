#include "ctlAudioSlider.h"

#include "AppGlobals.h"
#include "PcmSound.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

namespace {
constexpr int Margin = 8;
constexpr int ThumbWidth = 10;
// Spans enough for a wide window; the outline is scaled to the track.
constexpr int PeakSpans = 2048;
constexpr qint64 Step = 10;
constexpr qint64 BigStep = 100;
} // namespace

ctlAudioSlider::ctlAudioSlider(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("ctlAudioSlider"));
    setFocusPolicy(Qt::StrongFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    describe();
}

QSize ctlAudioSlider::sizeHint() const {
    return QSize(480, 96);
}

QSize ctlAudioSlider::minimumSizeHint() const {
    return QSize(160, 64);
}

void ctlAudioSlider::SetMinMaxValue(qint64 minimum, qint64 maximum) {
    m_min = minimum;
    m_max = std::max(maximum, minimum + 1);
    m_a = std::clamp(m_a, m_min, m_max - 1);
    m_b = std::clamp(m_b, m_a + 1, m_max);
    describe();
    update();
}

void ctlAudioSlider::setValueA(qint64 value) {
    moveThumb(ThumbA, value);
}

void ctlAudioSlider::setValueB(qint64 value) {
    moveThumb(ThumbB, value);
}

void ctlAudioSlider::setValues(qint64 a, qint64 b) {
    const qint64 start = std::clamp(a, m_min, m_max - 1);
    apply(start, std::clamp(b, start + 1, m_max));
}

void ctlAudioSlider::moveThumb(Thumb thumb, qint64 value) {
    if (thumb == ThumbA)
        apply(std::clamp(value, m_min, m_b - 1), m_b);
    else
        apply(m_a, std::clamp(value, m_a + 1, m_max));
}

void ctlAudioSlider::apply(qint64 a, qint64 b) {
    if (a == m_a && b == m_b)
        return;
    m_a = a;
    m_b = b;
    describe();
    update();
    emit valuesChanged(m_a, m_b);
}

void ctlAudioSlider::setCurrentThumb(Thumb thumb) {
    m_current = thumb;
    describe();
    update();
}

void ctlAudioSlider::SetProgress(qint64 value) {
    m_progress = value;
    if (m_progressVisible)
        update();
}

void ctlAudioSlider::setProgressVisible(bool visible) {
    m_progressVisible = visible;
    update();
}

void ctlAudioSlider::setProgressColor(const QColor& colour) {
    m_progressColor = colour;
    update();
}

void ctlAudioSlider::SetBackground(const QColor& colour) {
    m_background = colour;
    m_backPicture = QImage();
    update();
}

void ctlAudioSlider::SetBackground(const QImage& picture) {
    m_backPicture = picture;
    update();
}

void ctlAudioSlider::setWaveform(const PcmSound& sound) {
    m_peaks = WaveformPeaks(sound, PeakSpans);
    update();
}

// Screen readers hear where the markers are, in seconds.
void ctlAudioSlider::describe() {
    setAccessibleName(AppGlobals::text("STR_AUDIO_MARKERS", "Start and end of the sound"));
    setAccessibleDescription(QStringLiteral("A: %1 s, B: %2 s")
                                 .arg(double(m_a) / 1000, 0, 'f', 2)
                                 .arg(double(m_b) / 1000, 0, 'f', 2));
}

QRect ctlAudioSlider::track() const {
    return rect().adjusted(Margin, Margin, -Margin, -Margin);
}

double ctlAudioSlider::toX(qint64 value) const {
    const QRect area = track();
    return area.left() + double(value - m_min) * area.width() / double(m_max - m_min);
}

qint64 ctlAudioSlider::toValue(double x) const {
    const QRect area = track();
    const double fraction = std::clamp((x - area.left()) / std::max(1, area.width()), 0.0, 1.0);
    return m_min + qint64(std::llround(fraction * double(m_max - m_min)));
}

void ctlAudioSlider::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QRect area = track();
    if (m_backPicture.isNull())
        painter.fillRect(area, m_background);
    else
        painter.drawImage(area, m_backPicture);
    // What is cut away is shaded; the kept part stays clear.
    const QColor shade(0, 0, 0, 40);
    painter.fillRect(QRectF(area.left(), area.top(), toX(m_a) - area.left(), area.height()), shade);
    painter.fillRect(QRectF(toX(m_b), area.top(), area.right() - toX(m_b), area.height()), shade);
    if (m_progressVisible)
        painter.fillRect(QRectF(toX(m_a), area.top(),
                                toX(std::clamp(m_progress, m_a, m_b)) - toX(m_a), area.height()),
                         m_progressColor);
    paintWaveform(painter, area);
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawRect(area.adjusted(0, 0, -1, -1));
    paintThumb(painter, ThumbA);
    paintThumb(painter, ThumbB);
}

void ctlAudioSlider::paintWaveform(QPainter& painter, const QRect& area) const {
    const double middle = area.center().y();
    const double half = area.height() / 2.0 - 2;
    painter.setPen(palette().color(QPalette::Mid));
    painter.drawLine(QPointF(area.left(), middle), QPointF(area.right(), middle));
    if (m_peaks.isEmpty())
        return;
    painter.setPen(QColor(30, 90, 160));
    for (int x = area.left(); x <= area.right(); ++x) {
        const double fraction = double(x - area.left()) / std::max(1, area.width());
        const WaveformPeaks::Span& span = m_peaks.atFraction(fraction);
        painter.drawLine(QPointF(x, middle - span.high * half),
                         QPointF(x, middle - span.low * half));
    }
}

void ctlAudioSlider::paintThumb(QPainter& painter, Thumb thumb) const {
    const double x = toX(thumb == ThumbA ? m_a : m_b);
    const QRect area = track();
    const bool chosen = hasFocus() && thumb == m_current;
    const QColor colour = thumb == ThumbA ? QColor(30, 140, 60) : QColor(190, 50, 40);
    painter.setPen(QPen(colour, chosen ? 3 : 2));
    painter.drawLine(QPointF(x, area.top()), QPointF(x, area.bottom()));
    const QRectF handle(x - ThumbWidth / 2.0, area.top() - Margin + 1, ThumbWidth, Margin + 4);
    painter.setBrush(colour);
    painter.drawRect(handle);
    painter.setPen(Qt::white);
    QFont font = painter.font();
    font.setPixelSize(Margin + 2);
    font.setBold(true);
    painter.setFont(font);
    painter.drawText(handle, Qt::AlignCenter,
                     thumb == ThumbA ? QStringLiteral("A") : QStringLiteral("B"));
}

// A press takes the nearer thumb, and the thumb jumps to where it was pressed.
void ctlAudioSlider::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return QWidget::mousePressEvent(event);
    const double x = event->position().x();
    m_dragged = std::abs(x - toX(m_a)) <= std::abs(x - toX(m_b)) ? ThumbA : ThumbB;
    setCurrentThumb(m_dragged);
    moveThumb(m_dragged, toValue(x));
}

void ctlAudioSlider::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons() & Qt::LeftButton)
        moveThumb(m_dragged, toValue(event->position().x()));
}

void ctlAudioSlider::keyPressEvent(QKeyEvent* event) {
    const qint64 step = event->modifiers() & Qt::ShiftModifier ? BigStep : Step;
    const qint64 value = m_current == ThumbA ? m_a : m_b;
    switch (event->key()) {
    case Qt::Key_Left:
        return moveThumb(m_current, value - step);
    case Qt::Key_Right:
        return moveThumb(m_current, value + step);
    case Qt::Key_Home:
        return moveThumb(m_current, m_min);
    case Qt::Key_End:
        return moveThumb(m_current, m_max);
    case Qt::Key_A:
        return setCurrentThumb(ThumbA);
    case Qt::Key_B:
        return setCurrentThumb(ThumbB);
    default:
        QWidget::keyPressEvent(event);
    }
}

// Coming in with Tab starts at A, with Shift+Tab at B.
void ctlAudioSlider::focusInEvent(QFocusEvent* event) {
    if (event->reason() == Qt::TabFocusReason)
        m_current = ThumbA;
    else if (event->reason() == Qt::BacktabFocusReason)
        m_current = ThumbB;
    QWidget::focusInEvent(event);
}

// Tab goes from A to B, then on to the next control.
bool ctlAudioSlider::focusNextPrevChild(bool next) {
    if (next && m_current == ThumbA) {
        setCurrentThumb(ThumbB);
        return true;
    }
    if (!next && m_current == ThumbB) {
        setCurrentThumb(ThumbA);
        return true;
    }
    return QWidget::focusNextPrevChild(next);
}
