#include "CropFrame.h"

#include <algorithm>
#include <climits>
#include <cmath>

void CropFrame::reset(QSize picture, QSize aspect) {
    m_picture = picture;
    m_aspect = aspect.isEmpty() ? picture : aspect;
    if (picture.isEmpty()) {
        m_rect = QRect();
        return;
    }
    const int width = widestWithin(picture.width(), picture.height());
    const QSize size(width, heightFor(width));
    m_rect = QRect(
        QPoint((picture.width() - size.width()) / 2, (picture.height() - size.height()) / 2), size);
}

int CropFrame::heightFor(int width) const {
    const qint64 height =
        std::llround(double(width) * m_aspect.height() / std::max(1, m_aspect.width()));
    return int(std::max<qint64>(1, height));
}

int CropFrame::widestWithin(int width, int height) const {
    int widest = std::min<qint64>(
        width, qint64((height + 0.5) * m_aspect.width() / std::max(1, m_aspect.height())));
    // Rounding of the height may still take one pixel too many.
    while (widest > 1 && heightFor(widest) > height)
        --widest;
    return std::max(1, widest);
}

int CropFrame::minimumWidth() const {
    return std::min(MinimumWidth, widestWithin(m_picture.width(), m_picture.height()));
}

void CropFrame::moveBy(QPoint delta) {
    if (!isValid())
        return;
    const int x = std::clamp(m_rect.x() + delta.x(), 0, m_picture.width() - m_rect.width());
    const int y = std::clamp(m_rect.y() + delta.y(), 0, m_picture.height() - m_rect.height());
    m_rect.moveTo(x, y);
}

void CropFrame::dragCorner(Corner corner, QPoint point) {
    if (!isValid())
        return;
    const bool left = corner == TopLeft || corner == BottomLeft;
    const bool top = corner == TopLeft || corner == TopRight;
    // The opposite corner, as an edge position (one past the last pixel on
    // the right and at the bottom).
    const int anchorX = left ? m_rect.x() + m_rect.width() : m_rect.x();
    const int anchorY = top ? m_rect.y() + m_rect.height() : m_rect.y();
    const int roomX = left ? anchorX : m_picture.width() - anchorX;
    const int roomY = top ? anchorY : m_picture.height() - anchorY;
    // Measured in the corner's own direction: dragged past the opposite
    // corner, the frame shrinks to its smallest rather than turning over.
    const int askedX = std::max(0, left ? anchorX - point.x() : point.x() - anchorX);
    const int askedY = std::max(0, top ? anchorY - point.y() : point.y() - anchorY);
    const int asked = std::max(askedX, widestWithin(INT_MAX, askedY));
    const int width = std::max(std::min(asked, widestWithin(roomX, roomY)), minimumWidth());
    const QSize size(width, heightFor(width));
    m_rect = QRect(
        QPoint(left ? anchorX - size.width() : anchorX, top ? anchorY - size.height() : anchorY),
        size);
    // Where the room was less than the smallest frame, push it back inside.
    moveBy(QPoint());
}

void CropFrame::resizeBy(int delta) {
    if (!isValid())
        return;
    const int width = m_rect.width() + delta;
    dragCorner(BottomRight, m_rect.topLeft() + QPoint(width, heightFor(width)));
}
