#pragma once

#include <QColor>
#include <QPixmap>

class QWidget;

// The skin's background picture, tiled behind a panel's controls; without a
// picture the panel takes the plain colour. Lists and fields keep their own
// white, so what is written in them stays legible.
namespace SkinBackground {
void apply(QWidget* panel, const QPixmap& picture, const QColor& colour);
}
