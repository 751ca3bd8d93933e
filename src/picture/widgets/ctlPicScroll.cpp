#include "ctlPicScroll.h"

#include "AppError.h"
#include "ImageWriter.h"
#include "PictureTransform.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>
#include <QScrollBar>
#include <cmath>
#include <utility>

namespace {
constexpr int ScrollStep = 16;
constexpr qreal HandleSize = 9.0;
// Arrow keys move the crop frame by this part of the picture's width.
constexpr int CropKeySteps = 100;

int colourByte(qint64 value) {
    return int(((value % 256) + 256) % 256);
}
} // namespace

ctlPicScroll::ctlPicScroll(QWidget* parent) : QAbstractScrollArea(parent) {
    setFocusPolicy(Qt::StrongFocus);
    viewport()->setMouseTracking(true);
    viewport()->setBackgroundRole(QPalette::Mid);
    viewport()->setAutoFillBackground(true);
}

void ctlPicScroll::setPicture(const QImage& picture) {
    m_original = picture;
    m_picture = picture;
    m_laidOut = QSize();
    pictureTransformed();
}

void ctlPicScroll::Clear() {
    setPicture(QImage());
}

QSize ctlPicScroll::shownSize() const {
    if (m_picture.isNull())
        return QSize();
    switch (m_mode) {
    case ModeFit:
        return m_picture.size().scaled(viewport()->size(), Qt::KeepAspectRatio);
    case ModeStretch:
        return viewport()->size();
    case ModeZoom:
        break;
    }
    return m_zoom.shown(m_picture.size()).expandedTo(QSize(1, 1));
}

QRect ctlPicScroll::shownRect() const {
    const QSize shown = shownSize();
    const QSize view = viewport()->size();
    // Smaller than the frame, the picture sits in its middle.
    const int x = shown.width() < view.width() ? (view.width() - shown.width()) / 2
                                               : -horizontalScrollBar()->value();
    const int y = shown.height() < view.height() ? (view.height() - shown.height()) / 2
                                                 : -verticalScrollBar()->value();
    return QRect(QPoint(x, y), shown);
}

int ctlPicScroll::ZoomPercent() const {
    if (m_mode == ModeZoom || m_picture.isNull())
        return m_zoom.percent();
    return int(std::lround(100.0 * shownSize().width() / m_picture.width()));
}

void ctlPicScroll::setMode(DisplayMode mode) {
    m_mode = mode;
    relayout();
}

void ctlPicScroll::stepZoom(bool in) {
    if (m_mode != ModeZoom)
        m_zoom.setNearest(ZoomPercent());
    in ? m_zoom.zoomIn() : m_zoom.zoomOut();
    setMode(ModeZoom);
}

void ctlPicScroll::ZoomIn() {
    stepZoom(true);
}

void ctlPicScroll::ZoomOut() {
    stepZoom(false);
}

void ctlPicScroll::ZoomReal() {
    m_zoom.reset();
    setMode(ModeZoom);
}

void ctlPicScroll::ResetZoom() {
    ZoomReal();
    Go(1);
}

void ctlPicScroll::FitAndMaintainRatio() {
    setMode(ModeFit);
}

void ctlPicScroll::Stretch() {
    setMode(ModeStretch);
}

void ctlPicScroll::relayout() {
    const QSize view = viewport()->size();
    const QSize shown = shownSize();
    QScrollBar* const bars[] = {horizontalScrollBar(), verticalScrollBar()};
    const int viewEdges[] = {view.width(), view.height()};
    const int shownEdges[] = {shown.width(), shown.height()};
    const int before[] = {m_laidOut.width(), m_laidOut.height()};
    for (int i = 0; i < 2; ++i) {
        // The part of the picture at the frame's middle stays there.
        const double middle =
            before[i] > viewEdges[i] ? (bars[i]->value() + viewEdges[i] / 2.0) / before[i] : 0.5;
        bars[i]->setRange(0, std::max(0, shownEdges[i] - viewEdges[i]));
        bars[i]->setPageStep(viewEdges[i]);
        bars[i]->setSingleStep(ScrollStep);
        bars[i]->setValue(int(std::lround(middle * shownEdges[i] - viewEdges[i] / 2.0)));
    }
    m_laidOut = shown;
    viewport()->update();
    // Fitted and stretched, the percentage changes with the frame's size too.
    emit zoomChanged();
}

void ctlPicScroll::Go(int position) {
    if (position < 1 || position > 9)
        return;
    const int column = (position - 1) % 3;
    const int row = (position - 1) / 3;
    for (auto [bar, place] :
         {std::pair(horizontalScrollBar(), column), std::pair(verticalScrollBar(), row)})
        bar->setValue(place == 0   ? bar->minimum()
                      : place == 1 ? bar->maximum() / 2
                                   : bar->maximum());
}

void ctlPicScroll::Scroll(int dx, int dy, int pixelsStep) {
    scrollBy(dx, dy, pixelsStep, false);
}

void ctlPicScroll::ScrollLoop(int dx, int dy, int pixelsStep) {
    scrollBy(dx, dy, pixelsStep, true);
}

void ctlPicScroll::scrollBy(int dx, int dy, int pixelsStep, bool wrap) {
    if (pixelsStep <= 0)
        throw AppError(ErrorSource, QStringLiteral("PixelsStep must be > 0"));
    for (auto [bar, steps] :
         {std::pair(horizontalScrollBar(), dx), std::pair(verticalScrollBar(), dy)}) {
        const qint64 target = bar->value() + qint64(steps) * pixelsStep;
        const qint64 positions = qint64(bar->maximum()) + 1;
        bar->setValue(wrap ? int(((target % positions) + positions) % positions)
                           : int(std::clamp<qint64>(target, 0, bar->maximum())));
    }
}

void ctlPicScroll::Rotate(bool clockwise) {
    m_picture = PictureTransform::rotated(m_picture, clockwise);
    pictureTransformed();
}

void ctlPicScroll::Flip(bool horizontal) {
    m_picture = PictureTransform::flipped(m_picture, horizontal);
    pictureTransformed();
}

void ctlPicScroll::pictureTransformed() {
    m_scaled = QImage();
    m_crop.reset(m_picture.size(), m_cropAspect);
    relayout();
    emit pictureChanged();
}

void ctlPicScroll::SaveTo(const QString& path) const {
    const bool gif = path.endsWith(QStringLiteral(".gif"), Qt::CaseInsensitive);
    ImageWriter::write(m_picture, gif ? ImageWriter::Gif : ImageWriter::Bmp, path,
                       ImageWriter::currentSettings());
}

void ctlPicScroll::RGBDiv(qint64 colour, int& red, int& green, int& blue) {
    red = colourByte(colour);
    green = colourByte(colour / 256);
    blue = colourByte(colour / 65536);
}

void ctlPicScroll::CaptureDesktop() {
    if (QScreen* screen = QGuiApplication::primaryScreen())
        setPicture(screen->grabWindow(0).toImage());
}

void ctlPicScroll::setMouseScrolling(bool on) {
    m_mouseScrolling = on;
    viewport()->unsetCursor();
}

void ctlPicScroll::setCropAspect(QSize aspect) {
    m_cropAspect = aspect;
    m_crop.reset(m_picture.size(), m_cropAspect);
    viewport()->update();
}

void ctlPicScroll::setCropping(bool on) {
    m_cropping = on;
    viewport()->update();
}

QImage ctlPicScroll::croppedPicture() const {
    return m_cropping && m_crop.isValid() ? m_picture.copy(m_crop.rect()) : m_picture;
}

void ctlPicScroll::paintEvent(QPaintEvent* event) {
    if (m_picture.isNull())
        return;
    QPainter painter(viewport());
    paintPicture(painter, event->rect());
    if (m_cropping && m_crop.isValid())
        paintCrop(painter);
}

void ctlPicScroll::paintPicture(QPainter& painter, const QRect& area) {
    const QRect shown = shownRect();
    const QRect visible = shown.intersected(area);
    if (visible.isEmpty())
        return;
    // Scaled down, the picture is scaled once with every pixel counted,
    // and a photo does not shimmer as it is scrolled.
    if (qint64(shown.width()) * shown.height() < qint64(m_picture.width()) * m_picture.height()) {
        if (m_scaled.size() != shown.size())
            m_scaled =
                m_picture.scaled(shown.size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        painter.drawImage(visible.topLeft(), m_scaled, visible.translated(-shown.topLeft()));
        return;
    }
    // Enlarged, only the part in view is drawn.
    const qreal sx = qreal(m_picture.width()) / shown.width();
    const qreal sy = qreal(m_picture.height()) / shown.height();
    const QRectF source((visible.x() - shown.x()) * sx, (visible.y() - shown.y()) * sy,
                        visible.width() * sx, visible.height() * sy);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(QRectF(visible), m_picture, source);
}

QRectF ctlPicScroll::cropShown() const {
    const QRect shown = shownRect();
    const QRect frame = m_crop.rect();
    const qreal sx = qreal(shown.width()) / m_picture.width();
    const qreal sy = qreal(shown.height()) / m_picture.height();
    return QRectF(shown.x() + frame.x() * sx, shown.y() + frame.y() * sy, frame.width() * sx,
                  frame.height() * sy);
}

namespace {
QPointF cornerOf(const QRectF& frame, int corner) {
    switch (corner) {
    case CropFrame::TopLeft:
        return frame.topLeft();
    case CropFrame::TopRight:
        return frame.topRight();
    case CropFrame::BottomRight:
        return frame.bottomRight();
    default:
        return frame.bottomLeft();
    }
}

QRectF handleAt(QPointF corner) {
    return QRectF(corner - QPointF(HandleSize / 2, HandleSize / 2), QSizeF(HandleSize, HandleSize));
}
} // namespace

void ctlPicScroll::paintCrop(QPainter& painter) const {
    const QRectF frame = cropShown();
    // What is left out is dimmed, so the framed part stands out.
    QPainterPath outside;
    outside.addRect(QRectF(shownRect()));
    outside.addRect(frame);
    painter.fillPath(outside, QColor(0, 0, 0, 128));
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(QPen(Qt::black, 1));
    painter.drawRect(frame.adjusted(0, 0, -1, -1));
    painter.setPen(QPen(Qt::white, 1, Qt::DashLine));
    painter.drawRect(frame.adjusted(0, 0, -1, -1));
    painter.setPen(QPen(Qt::black, 1));
    for (int corner = CropFrame::TopLeft; corner <= CropFrame::BottomLeft; ++corner) {
        const QRectF handle = handleAt(cornerOf(frame, corner));
        painter.fillRect(handle, Qt::white);
        painter.drawRect(handle);
    }
}

int ctlPicScroll::cropCornerAt(QPointF point) const {
    if (!m_cropping || !m_crop.isValid())
        return -1;
    const QRectF frame = cropShown();
    for (int corner = CropFrame::TopLeft; corner <= CropFrame::BottomLeft; ++corner)
        if (handleAt(cornerOf(frame, corner)).adjusted(-2, -2, 2, 2).contains(point))
            return corner;
    return -1;
}

QPoint ctlPicScroll::toPicture(QPointF viewPoint) const {
    const QRect shown = shownRect();
    return QPoint(
        int(std::lround((viewPoint.x() - shown.x()) * m_picture.width() / shown.width())),
        int(std::lround((viewPoint.y() - shown.y()) * m_picture.height() / shown.height())));
}

void ctlPicScroll::updateCursor(QPointF point) {
    const int corner = cropCornerAt(point);
    if (corner >= 0)
        viewport()->setCursor(corner == CropFrame::TopLeft || corner == CropFrame::BottomRight
                                  ? Qt::SizeFDiagCursor
                                  : Qt::SizeBDiagCursor);
    else if (m_cropping && cropShown().contains(point))
        viewport()->setCursor(Qt::SizeAllCursor);
    else if (m_mouseScrolling && !m_picture.isNull())
        viewport()->setCursor(m_drag == Drag::Scroll ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
    else
        viewport()->unsetCursor();
}

void ctlPicScroll::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || m_picture.isNull())
        return QAbstractScrollArea::mousePressEvent(event);
    const QPointF point = event->position();
    m_dragStart = point.toPoint();
    m_dragCorner = cropCornerAt(point);
    m_cropAtStart = m_crop;
    m_drag = m_dragCorner >= 0                           ? Drag::CropCorner
             : m_cropping && cropShown().contains(point) ? Drag::MoveCrop
             : m_mouseScrolling                          ? Drag::Scroll
                                                         : Drag::None;
    m_scrollAtStart = QPoint(horizontalScrollBar()->value(), verticalScrollBar()->value());
    updateCursor(point);
}

void ctlPicScroll::mouseMoveEvent(QMouseEvent* event) {
    const QPointF point = event->position();
    switch (m_drag) {
    case Drag::None:
        updateCursor(point);
        return;
    case Drag::Scroll:
        horizontalScrollBar()->setValue(m_scrollAtStart.x() -
                                        (point.toPoint().x() - m_dragStart.x()));
        verticalScrollBar()->setValue(m_scrollAtStart.y() -
                                      (point.toPoint().y() - m_dragStart.y()));
        return;
    case Drag::MoveCrop:
        m_crop = m_cropAtStart;
        m_crop.moveBy(toPicture(point) - toPicture(m_dragStart));
        break;
    case Drag::CropCorner:
        m_crop.dragCorner(CropFrame::Corner(m_dragCorner), toPicture(point));
        break;
    }
    viewport()->update();
}

void ctlPicScroll::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return QAbstractScrollArea::mouseReleaseEvent(event);
    m_drag = Drag::None;
    updateCursor(event->position());
}

void ctlPicScroll::wheelEvent(QWheelEvent* event) {
    if (!(event->modifiers() & Qt::ControlModifier))
        return QAbstractScrollArea::wheelEvent(event);
    const int turn = event->angleDelta().y();
    if (turn != 0)
        stepZoom(turn > 0);
    event->accept();
}

void ctlPicScroll::keyPressEvent(QKeyEvent* event) {
    if (m_cropping && cropKey(event))
        return;
    switch (event->key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        return ZoomIn();
    case Qt::Key_Minus:
        return ZoomOut();
    default:
        QAbstractScrollArea::keyPressEvent(event);
    }
}

bool ctlPicScroll::cropKey(QKeyEvent* event) {
    QPoint direction;
    switch (event->key()) {
    case Qt::Key_Left:
        direction = QPoint(-1, 0);
        break;
    case Qt::Key_Right:
        direction = QPoint(1, 0);
        break;
    case Qt::Key_Up:
        direction = QPoint(0, -1);
        break;
    case Qt::Key_Down:
        direction = QPoint(0, 1);
        break;
    default:
        return false;
    }
    const int step = std::max(1, m_picture.width() / CropKeySteps);
    // With Shift, right and down make the frame larger, left and up smaller.
    if (event->modifiers() & Qt::ShiftModifier)
        m_crop.resizeBy((direction.x() + direction.y()) * step);
    else
        m_crop.moveBy(direction * step);
    viewport()->update();
    return true;
}

void ctlPicScroll::resizeEvent(QResizeEvent* event) {
    QAbstractScrollArea::resizeEvent(event);
    relayout();
}

void ctlPicScroll::scrollContentsBy(int, int) {
    viewport()->update();
}
