#include "SlidePictureView.h"

#include <QPainter>

SlidePictureView::SlidePictureView(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("picSlide"));
    setMinimumSize(160, 120);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

void SlidePictureView::setPicture(const QImage& picture) {
    m_picture = picture;
    update();
}

void SlidePictureView::setEmptyText(const QString& text) {
    m_emptyText = text;
    setAccessibleDescription(text);
    update();
}

QRect SlidePictureView::pictureRect() const {
    if (m_picture.isNull())
        return {};
    const QSize room = size() - QSize(16, 16);
    const QSize own = m_picture.size();
    const int zoom = std::min(room.width() / own.width(), room.height() / own.height());
    const QSize shown = zoom >= 1 ? own * zoom : own.scaled(room, Qt::KeepAspectRatio);
    QRect area(QPoint(0, 0), shown);
    area.moveCenter(rect().center());
    return area;
}

void SlidePictureView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().dark());
    if (m_picture.isNull()) {
        painter.setPen(palette().color(QPalette::BrightText));
        painter.drawText(rect().adjusted(12, 12, -12, -12), Qt::AlignCenter | Qt::TextWordWrap,
                         m_emptyText);
        return;
    }
    const QRect area = pictureRect();
    // Whole-number zoom keeps the pixels square; only a scaled-down picture is smoothed.
    painter.setRenderHint(QPainter::SmoothPixmapTransform, area.width() < m_picture.width());
    painter.drawImage(area, m_picture);
    painter.setPen(palette().color(QPalette::Shadow));
    painter.drawRect(area.adjusted(-1, -1, 0, 0));
}
