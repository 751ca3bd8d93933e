#pragma once

#include <QSize>

// The zoom of a picture view, in fixed steps from 5 % to 325 %: fine steps
// below real size, where a large photo is looked at whole, and quarter
// steps above it.
class ZoomSteps {
public:
    static constexpr int Count = 20;
    // The step at which a picture is shown at its real size.
    static constexpr int RealSize = 10;

    static int percentAt(int index);

    int index() const { return m_index; }
    int percent() const { return percentAt(m_index); }
    // One step up or down; nothing happens past either end.
    void zoomIn();
    void zoomOut();
    void reset() { m_index = RealSize; }
    // The step closest to a percentage shown some other way.
    void setNearest(int percent);
    // The picture's size at this step, rounded down.
    QSize shown(QSize picture) const;

private:
    int m_index = RealSize;
};
