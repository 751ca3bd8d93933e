#include "ZoomSteps.h"

#include <array>
#include <cstdlib>

namespace {
constexpr std::array<int, ZoomSteps::Count> Percents = {
    5, 10, 20, 30, 40, 50, 60, 70, 80, 90, 100, 125, 150, 175, 200, 225, 250, 275, 300, 325};
static_assert(Percents[ZoomSteps::RealSize] == 100);
} // namespace

int ZoomSteps::percentAt(int index) {
    return Percents[index];
}

void ZoomSteps::zoomIn() {
    if (m_index < Count - 1)
        ++m_index;
}

void ZoomSteps::zoomOut() {
    if (m_index > 0)
        --m_index;
}

void ZoomSteps::setNearest(int percent) {
    m_index = 0;
    for (int i = 1; i < Count; ++i)
        if (std::abs(Percents[i] - percent) < std::abs(Percents[m_index] - percent))
            m_index = i;
}

QSize ZoomSteps::shown(QSize picture) const {
    return QSize(int(qint64(picture.width()) * percent() / 100),
                 int(qint64(picture.height()) * percent() / 100));
}
