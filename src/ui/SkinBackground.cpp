#include "SkinBackground.h"

#include <QBrush>
#include <QPalette>
#include <QWidget>

void SkinBackground::apply(QWidget* panel, const QPixmap& picture, const QColor& colour) {
    QPalette shade = panel->palette();
    shade.setBrush(QPalette::Window, picture.isNull() ? QBrush(colour) : QBrush(picture));
    panel->setPalette(shade);
    panel->setAutoFillBackground(true);
}
