#pragma once

#include "SmilTimeline.h"

#include <QCache>
#include <QImage>

// Paints what a presentation shows at a moment: the screen's background,
// the regions' backgrounds, every picture and video (its first picture)
// fitted into its region keeping its shape, and every text wrapped in its
// region. Pictures are read once, by the program's own picture reader, so
// a picture too big or broken to use is left out and named in problems().
class SmilFrameRenderer {
public:
    explicit SmilFrameRenderer(const SmilTimeline& timeline);

    QImage render(qint64 ms);
    const QStringList& problems() const { return m_problems; }

private:
    void drawPicture(QPainter& painter, const SmilTimeline::Item& item);
    static void drawText(QPainter& painter, const SmilTimeline::Item& item);
    QImage fitted(const SmilTimeline::Item& item);

    const SmilTimeline& m_timeline;
    // Fitted pictures, up to a memory budget, so a presentation of many big
    // pictures is read again rather than held whole.
    QCache<QString, QImage> m_pictures;
    QStringList m_problems;
};
