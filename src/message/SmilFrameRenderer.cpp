#include "SmilFrameRenderer.h"

#include "AppError.h"
#include "MediaFrame.h"

#include <QPainter>
#include <algorithm>

namespace {
// Phone screens show small text; this size reads well on a 160-pixel screen.
constexpr int kTextPixels = 12;
constexpr qsizetype kPictureBudgetBytes = 64 * 1024 * 1024;
} // namespace

SmilFrameRenderer::SmilFrameRenderer(const SmilTimeline& timeline)
    : m_timeline(timeline), m_pictures(kPictureBudgetBytes) {}

QImage SmilFrameRenderer::render(qint64 ms) {
    QImage frame(m_timeline.size(), QImage::Format_RGB32);
    frame.fill(m_timeline.background());
    QPainter painter(&frame);
    for (const SmilTimeline::Region& region : m_timeline.regions())
        if (region.background.isValid())
            painter.fillRect(region.rect, region.background);
    for (const SmilTimeline::Item* item : m_timeline.itemsAt(ms)) {
        if (item->kind == SmilTimeline::Kind::Text)
            drawText(painter, *item);
        else if (SmilTimeline::isVisible(item->kind))
            drawPicture(painter, *item);
    }
    return frame;
}

void SmilFrameRenderer::drawPicture(QPainter& painter, const SmilTimeline::Item& item) {
    const QImage picture = fitted(item);
    if (picture.isNull())
        return;
    const QSize room = item.area.size();
    const QPoint at = item.area.topLeft() + QPoint((room.width() - picture.width()) / 2,
                                                   (room.height() - picture.height()) / 2);
    painter.drawImage(at, picture);
}

void SmilFrameRenderer::drawText(QPainter& painter, const SmilTimeline::Item& item) {
    QFont font = painter.font();
    font.setPixelSize(kTextPixels);
    painter.setFont(font);
    painter.setPen(Qt::black);
    painter.drawText(item.area, Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, item.text);
}

// The picture scaled into its region, read and scaled once per region size.
QImage SmilFrameRenderer::fitted(const SmilTimeline::Item& item) {
    const QString key = item.file + u'|' + QString::number(item.area.width()) + u'x' +
                        QString::number(item.area.height());
    if (const QImage* known = m_pictures.object(key))
        return *known;
    QImage picture;
    try {
        picture = MediaFrame::load(item.file);
        if (!picture.isNull() && !item.area.isEmpty())
            picture =
                picture.scaled(item.area.size(), Qt::KeepAspectRatio, Qt::SmoothTransformation);
    } catch (const AppError& error) {
        if (!m_problems.contains(error.description()))
            m_problems << error.description();
    }
    m_pictures.insert(key, new QImage(picture), std::max<qsizetype>(1, picture.sizeInBytes()));
    return picture;
}
