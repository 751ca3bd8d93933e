#pragma once

#include <QImage>
#include <QWidget>

// The slide picture, crisp: a small picture is shown at a whole-number zoom
// (2x, 3x), so its pixels stay sharp; one larger than the room is scaled
// down to fit. Without a picture it says what to do next.
class SlidePictureView : public QWidget {
    Q_OBJECT
public:
    explicit SlidePictureView(QWidget* parent = nullptr);

    void setPicture(const QImage& picture);
    const QImage& picture() const { return m_picture; }
    void setEmptyText(const QString& text);
    // The rectangle the picture is drawn in, for the current size.
    QRect pictureRect() const;
    QSize sizeHint() const override { return {480, 360}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QImage m_picture;
    QString m_emptyText;
};
