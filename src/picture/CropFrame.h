#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

// The part of a picture that goes onto a slide: a rectangle in picture
// pixels, of the slide's proportions, always wholly inside the picture,
// so that the part fills the slide without being distorted. It knows
// nothing of zoom: the view turns its own coordinates into picture pixels
// before asking.
class CropFrame {
public:
    enum Corner { TopLeft, TopRight, BottomRight, BottomLeft };
    // Narrower than this (or the picture, when that is narrower) a frame
    // could no longer be seen or grabbed.
    static constexpr int MinimumWidth = 8;

    // The largest frame of aspect's proportions, centred in the picture.
    void reset(QSize picture, QSize aspect);
    QRect rect() const { return m_rect; }
    QSize picture() const { return m_picture; }
    bool isValid() const { return !m_rect.isEmpty(); }

    // Moves by delta, stopping at the picture's edges.
    void moveBy(QPoint delta);
    // The corner follows point while the opposite corner stays put: the
    // frame takes the larger of the two sizes the point asks for, within
    // the picture and the proportions.
    void dragCorner(Corner corner, QPoint point);
    // Grows (or shrinks, for a negative delta) the width from the top-left corner.
    void resizeBy(int delta);

    // The height that goes with a width at the frame's proportions.
    int heightFor(int width) const;

private:
    // The widest frame whose height fits in height and width in width.
    int widestWithin(int width, int height) const;
    int minimumWidth() const;

    QSize m_picture;
    QSize m_aspect;
    QRect m_rect;
};
