#pragma once

#include <QList>
#include <QPointF>
#include <QRect>
#include <QRectF>
#include <Qt>

// The frame around the selected picture object: its eight handles and what
// dragging one of them does to the object's rectangle. Handles live in window
// coordinates (they keep their size at any zoom); rectangles being resized
// are slide-picture pixels.
class SelectionFrame {
public:
    enum Handle { None = -1, TopLeft, Top, TopRight, Right, BottomRight, Bottom, BottomLeft, Left };
    static constexpr int kHandleCount = 8;
    // No object gets smaller than this many slide pixels either way, so it
    // can always be seen and grabbed again.
    static constexpr int kMinimumSize = 4;
    static constexpr qreal kHandleSize = 7.0;

    // The handle squares around shown, in Handle order.
    static QList<QRectF> handles(const QRectF& shown);
    static Handle handleAt(const QRectF& shown, const QPointF& point);
    static Qt::CursorShape cursor(Handle handle);

    // start with handle dragged by delta; keepRatio keeps start's proportions.
    static QRect resized(const QRect& start, Handle handle, QPoint delta, bool keepRatio);

private:
    static QRect withRatio(const QRect& start, QRect changed, Handle handle);
};
