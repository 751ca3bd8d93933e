#include "cDIBSection.h"

#include "PictureLimits.h"

#include <QPainter>

bool cDIBSection::Create(int width, int height) {
    ClearUp();
    if (!PictureLimits::fits(QSize(width, height)))
        return false;
    m_image = QImage(width, height, QImage::Format_BGR888);
    return !m_image.isNull();
}

bool cDIBSection::LoadPictureBlt(const QImage& picture) {
    if (m_image.isNull() && !Create(picture.width(), picture.height()))
        return false;
    m_image.fill(Qt::white);
    QPainter painter;
    if (!painter.begin(&m_image))
        return false;
    painter.drawImage(0, 0, picture);
    return painter.end();
}

void cDIBSection::PaintPicture(QPainter& target, int x, int y) const {
    target.drawImage(x, y, m_image);
}

void cDIBSection::ClearUp() {
    m_image = QImage();
}
