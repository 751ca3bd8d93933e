#pragma once

#include "CropFrame.h"
#include "ZoomSteps.h"

#include <QAbstractScrollArea>
#include <QImage>

// A picture in a frame with scroll bars: zoomed in steps, fitted into the
// frame or stretched over it, scrolled by the bars, the keys, the wheel or
// by dragging it with the mouse, turned and mirrored. While cropping is on,
// a frame of fixed proportions over the picture marks the part to be used;
// it is moved by dragging it or with the arrow keys and resized by a
// corner or with Shift and the arrow keys.
class ctlPicScroll : public QAbstractScrollArea {
    Q_OBJECT
    Q_PROPERTY(bool MouseScrolling READ MouseScrolling WRITE setMouseScrolling)
public:
    static constexpr const char* ErrorSource = "ctlPicScroll";
    enum DisplayMode { ModeZoom, ModeFit, ModeStretch };

    explicit ctlPicScroll(QWidget* parent = nullptr);

    // Shows picture as it is; turns and mirrors start again from it.
    void setPicture(const QImage& picture);
    // The picture as it was given.
    QImage Picture() const { return m_original; }
    // The picture as it is shown: turned and mirrored, at its own size.
    QImage GetPicture() const { return m_picture; }
    void Clear();
    int PictureWidth() const { return m_picture.width(); }
    int PictureHeight() const { return m_picture.height(); }

    DisplayMode displayMode() const { return m_mode; }
    // The zoom step's percentage, or what fitting and stretching make of
    // the picture's width.
    int ZoomPercent() const;
    // One zoom step up or down; from fit or stretch, from the step nearest
    // to what was shown.
    void ZoomIn();
    void ZoomOut();
    void ZoomReal();
    void ResetZoom();
    void FitAndMaintainRatio();
    void Stretch();
    // Where the picture is drawn, in the viewport's coordinates.
    QRect shownRect() const;

    // Scrolls to one of nine places, numbered as a phone's keys: 1 top
    // left, 2 top centre, 3 top right, 4 to 6 the middle row, 7 to 9 the
    // bottom row. The middle is half the scroll bar's range.
    void Go(int position);
    // Scrolls by dx and dy steps of pixelsStep pixels, stopping at the ends
    // (Scroll) or coming round to the other end (ScrollLoop). Throws
    // AppError for a step that is not positive.
    void Scroll(int dx, int dy, int pixelsStep);
    void ScrollLoop(int dx, int dy, int pixelsStep);

    void Rotate(bool clockwise);
    // horizontal true mirrors left and right, false top and bottom.
    void Flip(bool horizontal);
    // Writes the shown picture as BMP, or as GIF when the name ends in
    // ".gif"; throws AppError when it cannot.
    void SaveTo(const QString& path) const;
    // A stored colour value (red in the lowest byte) taken apart.
    static void RGBDiv(qint64 colour, int& red, int& green, int& blue);
    // The primary screen becomes the picture.
    void CaptureDesktop();

    bool MouseScrolling() const { return m_mouseScrolling; }
    void setMouseScrolling(bool on);

    // The proportions of the crop frame, e.g. the slide picture's size.
    void setCropAspect(QSize aspect);
    void setCropping(bool on);
    bool cropping() const { return m_cropping; }
    // The crop frame in picture pixels.
    QRect cropRect() const { return m_crop.rect(); }
    // The shown picture, or only its framed part while cropping is on.
    QImage croppedPicture() const;

signals:
    void pictureChanged();
    // The shown size changed: a zoom step, a display mode or the frame's size.
    void zoomChanged();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    enum class Drag { None, Scroll, MoveCrop, CropCorner };

    QSize shownSize() const;
    void setMode(DisplayMode mode);
    // Lays out the scroll bars for a new shown size, keeping the point at
    // the middle of the frame where it was.
    void relayout();
    void pictureTransformed();
    void stepZoom(bool in);
    void scrollBy(int dx, int dy, int pixelsStep, bool wrap);
    void paintPicture(QPainter& painter, const QRect& area);
    void paintCrop(QPainter& painter) const;
    QRectF cropShown() const;
    QPoint toPicture(QPointF viewPoint) const;
    // The crop frame's corner at a viewport point, or -1.
    int cropCornerAt(QPointF point) const;
    void updateCursor(QPointF point);
    bool cropKey(QKeyEvent* event);

    QImage m_original;
    QImage m_picture;
    // The picture scaled down to its shown size, made when first drawn so.
    mutable QImage m_scaled;
    ZoomSteps m_zoom;
    DisplayMode m_mode = ModeZoom;
    bool m_mouseScrolling = true;
    bool m_cropping = false;
    QSize m_cropAspect;
    CropFrame m_crop;
    Drag m_drag = Drag::None;
    QPoint m_dragStart;
    QPoint m_scrollAtStart;
    CropFrame m_cropAtStart;
    int m_dragCorner = -1;
    // The shown size the scroll bars were last laid out for.
    QSize m_laidOut;
};
