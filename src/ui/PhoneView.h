#pragma once

#include <QImage>
#include <QPixmap>
#include <QWidget>

// The phone picture with the slide drawn into its screen rectangle: fill
// mode 0 stretches the slide over the rectangle; any other mode draws it at
// its own size, centred where it is smaller and from the rectangle's corner
// where it is larger (never shrunk, and never over the phone around it).
// Without a phone picture the slide is shown on its own. Where the room is
// too small, the whole is shown smaller.
class PhoneView : public QWidget {
    Q_OBJECT
public:
    explicit PhoneView(QWidget* parent = nullptr);

    void setPhone(const QPixmap& phone, const QRect& screen, int fillMode);
    void setSlide(const QImage& slide);
    // Where the slide lands, in the view's coordinates.
    QRect slideRect() const;
    // The phone's whole screen in the view's coordinates (without a phone,
    // where the slide lands).
    QRect screenRect() const;
    // A widget that plays on the phone's screen, kept over it as the phone
    // is laid out; nullptr takes none.
    void setScreenWidget(QWidget* widget);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

signals:
    void contextMenuRequested(const QPoint& globalPos);

protected:
    void paintEvent(QPaintEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    qreal scale() const;
    QPoint phoneOrigin() const;
    QRect slideRectInPhone() const;
    QSize contentSize() const;
    QRect toView(const QRect& inPhone) const;
    void placeScreenWidget();

    QPixmap m_phone;
    QRect m_screen;
    int m_fillMode = 1;
    QImage m_slide;
    QWidget* m_screenWidget = nullptr;
};
