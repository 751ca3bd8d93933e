#include "SelectionFrame.h"

#include <algorithm>
#include <cmath>

namespace {
bool movesLeft(SelectionFrame::Handle h) {
    return h == SelectionFrame::TopLeft || h == SelectionFrame::Left ||
           h == SelectionFrame::BottomLeft;
}
bool movesRight(SelectionFrame::Handle h) {
    return h == SelectionFrame::TopRight || h == SelectionFrame::Right ||
           h == SelectionFrame::BottomRight;
}
bool movesTop(SelectionFrame::Handle h) {
    return h == SelectionFrame::TopLeft || h == SelectionFrame::Top ||
           h == SelectionFrame::TopRight;
}
bool movesBottom(SelectionFrame::Handle h) {
    return h == SelectionFrame::BottomLeft || h == SelectionFrame::Bottom ||
           h == SelectionFrame::BottomRight;
}
} // namespace

QList<QRectF> SelectionFrame::handles(const QRectF& shown) {
    const QPointF centres[kHandleCount] = {
        shown.topLeft(),     {shown.center().x(), shown.top()},
        shown.topRight(),    {shown.right(), shown.center().y()},
        shown.bottomRight(), {shown.center().x(), shown.bottom()},
        shown.bottomLeft(),  {shown.left(), shown.center().y()}};
    QList<QRectF> squares;
    for (const QPointF& centre : centres) {
        QRectF square(0, 0, kHandleSize, kHandleSize);
        square.moveCenter(centre);
        squares << square;
    }
    return squares;
}

SelectionFrame::Handle SelectionFrame::handleAt(const QRectF& shown, const QPointF& point) {
    const QList<QRectF> squares = handles(shown);
    for (int i = 0; i < kHandleCount; ++i) {
        // A little slack around each square: they are small targets.
        if (squares[i].adjusted(-2, -2, 2, 2).contains(point))
            return Handle(i);
    }
    return None;
}

Qt::CursorShape SelectionFrame::cursor(Handle handle) {
    switch (handle) {
    case TopLeft:
    case BottomRight:
        return Qt::SizeFDiagCursor;
    case TopRight:
    case BottomLeft:
        return Qt::SizeBDiagCursor;
    case Top:
    case Bottom:
        return Qt::SizeVerCursor;
    case Left:
    case Right:
        return Qt::SizeHorCursor;
    default:
        return Qt::ArrowCursor;
    }
}

// The dragged edges follow the pointer; the opposite edges stay where they
// are, and an edge dragged past its opposite stops at the minimum size.
QRect SelectionFrame::resized(const QRect& start, Handle handle, QPoint delta, bool keepRatio) {
    int left = start.left();
    int top = start.top();
    int right = start.left() + start.width();
    int bottom = start.top() + start.height();
    if (movesLeft(handle))
        left = std::min(left + delta.x(), right - kMinimumSize);
    if (movesRight(handle))
        right = std::max(right + delta.x(), left + kMinimumSize);
    if (movesTop(handle))
        top = std::min(top + delta.y(), bottom - kMinimumSize);
    if (movesBottom(handle))
        bottom = std::max(bottom + delta.y(), top + kMinimumSize);
    const QRect changed(left, top, right - left, bottom - top);
    return keepRatio && !start.isEmpty() ? withRatio(start, changed, handle) : changed;
}

// The side that changed most leads; the other follows the start's
// proportions, growing away from the edges that stay put.
QRect SelectionFrame::withRatio(const QRect& start, QRect changed, Handle handle) {
    const double ratio = double(start.width()) / double(start.height());
    const bool horizontalOnly = handle == Left || handle == Right;
    const bool verticalOnly = handle == Top || handle == Bottom;
    const double widthChange = double(changed.width()) / start.width();
    const double heightChange = double(changed.height()) / start.height();
    const bool widthLeads = horizontalOnly || (!verticalOnly && std::abs(widthChange - 1) >=
                                                                    std::abs(heightChange - 1));
    int width = changed.width();
    int height = changed.height();
    if (widthLeads)
        height = std::max(kMinimumSize, int(std::lround(width / ratio)));
    else
        width = std::max(kMinimumSize, int(std::lround(height * ratio)));
    const int left = movesLeft(handle) ? changed.right() + 1 - width : changed.left();
    const int top = movesTop(handle) ? changed.bottom() + 1 - height : changed.top();
    return QRect(left, top, width, height);
}
