#include "PhoneView.h"

#include <QContextMenuEvent>
#include <QPainter>

PhoneView::PhoneView(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("picPhone"));
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    // Focus lets the menu key open the phone's menu.
    setFocusPolicy(Qt::StrongFocus);
}

void PhoneView::setPhone(const QPixmap& phone, const QRect& screen, int fillMode) {
    m_phone = phone;
    m_screen = screen;
    m_fillMode = fillMode;
    updateGeometry();
    update();
}

void PhoneView::setSlide(const QImage& slide) {
    m_slide = slide;
    updateGeometry();
    update();
}

QSize PhoneView::contentSize() const {
    return m_phone.isNull() ? m_slide.size() : m_phone.deviceIndependentSize().toSize();
}

QSize PhoneView::sizeHint() const {
    return contentSize().expandedTo(QSize(160, 120));
}

QPoint PhoneView::phoneOrigin() const {
    const QSize content = contentSize();
    return QPoint(std::max(0, (width() - content.width()) / 2),
                  std::max(0, (height() - content.height()) / 2));
}

QRect PhoneView::slideRect() const {
    if (m_phone.isNull())
        return QRect(phoneOrigin(), m_slide.size());
    const QRect screen = m_screen.translated(phoneOrigin());
    if (m_fillMode == 0)
        return screen;
    const QSize size = m_slide.size();
    return QRect(screen.left() + std::max(0, (screen.width() - size.width()) / 2),
                 screen.top() + std::max(0, (screen.height() - size.height()) / 2), size.width(),
                 size.height());
}

void PhoneView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    if (!m_phone.isNull()) {
        painter.drawPixmap(phoneOrigin(), m_phone);
        painter.setClipRect(m_screen.translated(phoneOrigin()));
    }
    if (m_slide.isNull())
        return;
    // Stretching is the one case that scales; small slides stay crisp.
    painter.setRenderHint(QPainter::SmoothPixmapTransform, m_fillMode == 0);
    painter.drawImage(slideRect(), m_slide);
}

void PhoneView::contextMenuEvent(QContextMenuEvent* event) {
    emit contextMenuRequested(event->reason() == QContextMenuEvent::Mouse
                                  ? event->globalPos()
                                  : mapToGlobal(slideRect().center()));
}
