#include "PhoneView.h"

#include <QContextMenuEvent>
#include <QPainter>

PhoneView::PhoneView(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("picPhone"));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    // Focus lets the menu key open the phone's menu.
    setFocusPolicy(Qt::StrongFocus);
}

void PhoneView::setPhone(const QPixmap& phone, const QRect& screen, int fillMode) {
    m_phone = phone;
    m_screen = screen;
    m_fillMode = fillMode;
    updateGeometry();
    placeScreenWidget();
    update();
}

void PhoneView::setSlide(const QImage& slide) {
    m_slide = slide;
    updateGeometry();
    placeScreenWidget();
    update();
}

QSize PhoneView::contentSize() const {
    return m_phone.isNull() ? m_slide.size() : m_phone.deviceIndependentSize().toSize();
}

QSize PhoneView::sizeHint() const {
    return contentSize().expandedTo(QSize(160, 120));
}

QSize PhoneView::minimumSizeHint() const {
    return sizeHint() / 3;
}

// A phone taller or wider than the room it has is shown smaller as a whole,
// never larger.
qreal PhoneView::scale() const {
    const QSize content = contentSize();
    if (content.isEmpty())
        return 1;
    return std::min(
        {qreal(1), qreal(width()) / content.width(), qreal(height()) / content.height()});
}

QPoint PhoneView::phoneOrigin() const {
    const QSizeF content = QSizeF(contentSize()) * scale();
    return QPoint(std::max(0, int((width() - content.width()) / 2)),
                  std::max(0, int((height() - content.height()) / 2)));
}

// In the phone's own pixels, before any scaling.
QRect PhoneView::slideRectInPhone() const {
    if (m_phone.isNull())
        return QRect(QPoint(0, 0), m_slide.size());
    if (m_fillMode == 0)
        return m_screen;
    const QSize size = m_slide.size();
    return QRect(m_screen.left() + std::max(0, (m_screen.width() - size.width()) / 2),
                 m_screen.top() + std::max(0, (m_screen.height() - size.height()) / 2),
                 size.width(), size.height());
}

QRect PhoneView::toView(const QRect& inPhone) const {
    const QRectF area = inPhone;
    return QRectF(QPointF(phoneOrigin()) + area.topLeft() * scale(), area.size() * scale())
        .toRect();
}

QRect PhoneView::slideRect() const {
    return toView(slideRectInPhone());
}

QRect PhoneView::screenRect() const {
    if (m_phone.isNull())
        return m_slide.isNull() ? rect() : slideRect();
    return toView(m_screen);
}

void PhoneView::setScreenWidget(QWidget* widget) {
    m_screenWidget = widget;
    if (!widget)
        return;
    widget->setParent(this);
    placeScreenWidget();
}

void PhoneView::placeScreenWidget() {
    if (m_screenWidget)
        m_screenWidget->setGeometry(screenRect());
}

void PhoneView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    placeScreenWidget();
}

void PhoneView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.translate(phoneOrigin());
    painter.scale(scale(), scale());
    // Scaling is smooth; a slide shown 1:1 stays crisp anyway.
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (!m_phone.isNull()) {
        painter.drawPixmap(0, 0, m_phone);
        painter.setClipRect(m_screen);
    }
    if (!m_slide.isNull())
        painter.drawImage(slideRectInPhone(), m_slide);
}

void PhoneView::contextMenuEvent(QContextMenuEvent* event) {
    emit contextMenuRequested(event->reason() == QContextMenuEvent::Mouse
                                  ? event->globalPos()
                                  : mapToGlobal(slideRect().center()));
}
