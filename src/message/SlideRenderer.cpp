#include "SlideRenderer.h"

#include "AppError.h"
#include "AppGlobals.h"
#include "MediaFrame.h"
#include "PictureCache.h"
#include "PictureLimits.h"
#include "PlainFileName.h"
#include "StoredColor.h"
#include "clsDrawObjects.h"
#include "clsMessage.h"
#include "clsSlide.h"

#include <QFile>
#include <QPaintDevice>
#include <QPainter>
#include <QTextOption>
#include <QtMath>
#include <algorithm>

namespace {
// The device pixels a rectangle of the surface covers: a picture drawn there
// is decoded no larger than that.
QSize pixelsCovered(const QPainter& painter, const QRectF& rect) {
    const QRectF covered = painter.worldTransform().mapRect(rect);
    const qreal ratio = painter.device() ? painter.device()->devicePixelRatio() : 1.0;
    return QSize(qCeil(covered.width() * ratio), qCeil(covered.height() * ratio))
        .expandedTo(QSize(1, 1));
}

std::vector<const clsDrawObject*> inStackingOrder(const clsDrawObjects& objects) {
    std::vector<const clsDrawObject*> ordered;
    for (const auto& object : objects)
        ordered.push_back(object.get());
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](auto* a, auto* b) { return a->zorder() < b->zorder(); });
    return ordered;
}
} // namespace

SlideRenderer::SlideRenderer(QString workFolder, QSize surfaceSize)
    : m_workFolder(std::move(workFolder)), m_surface(surfaceSize) {}

void SlideRenderer::paint(QPainter& painter, const clsDrawObjects& objects,
                          const QRectF& target) const {
    m_missing.clear();
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.translate(target.topLeft());
    painter.scale(target.width() / m_surface.width(), target.height() / m_surface.height());
    painter.setClipRect(QRectF(QPointF(0, 0), QSizeF(m_surface)));
    paintBackground(painter, objects, QSizeF(m_surface));
    for (const clsDrawObject* object : inStackingOrder(objects)) {
        if (object->typ() == QLatin1String("image"))
            paintImage(painter, *object);
        else if (object->typ() == QLatin1String("text"))
            paintText(painter, *object);
    }
    painter.restore();
}

QImage SlideRenderer::render(const clsDrawObjects& objects, QSize target) const {
    QImage picture(target, QImage::Format_RGB32);
    picture.fill(Qt::white);
    QPainter painter(&picture);
    paint(painter, objects, QRectF(QPointF(0, 0), QSizeF(target)));
    return picture;
}

QImage SlideRenderer::picture(const clsSlide& slide) const {
    return slide.image().isNull() ? render(slide.DrawObjects()) : slide.image();
}

bool SlideRenderer::hasPicture(const clsSlide& slide) {
    const clsDrawObjects& objects = slide.DrawObjects();
    return !slide.image().isNull() || objects.Count() > 0 ||
           objects.BackType() != clsDrawObjects::BackColorOnly;
}

// A slide file is made anew on every save, after the old ones were deleted,
// and only travels on inside the message file, which is written safely.
// Waiting for each one to reach the disk, as AtomicFile does, took a message
// of 10,000 slides most of a minute. NewOnly never writes through a link or
// over anything that was left in the way.
bool SlideRenderer::renderToFile(const clsSlide& slide, const QString& path) const {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::NewOnly))
        return false;
    if (picture(slide).convertToFormat(QImage::Format_RGB888).save(&file, "BMP") && file.flush())
        return true;
    file.remove(); // no half picture is left for the archive to pack
    return false;
}

Qt::Alignment SlideRenderer::alignmentOf(int stored) {
    switch (stored) {
    case 1:
        return Qt::AlignRight;
    case 2:
        return Qt::AlignHCenter;
    default:
        return Qt::AlignLeft;
    }
}

QFont SlideRenderer::fontOf(const DrawObjectProperties& p) {
    QFont font(p.fontName.isEmpty() ? QStringLiteral("Verdana") : p.fontName);
    font.setPixelSize(std::max(1, qRound((p.fontSize > 0 ? p.fontSize : 8.0) * 96.0 / 72.0)));
    font.setBold(p.bold);
    font.setItalic(p.italic);
    font.setUnderline(p.underline);
    return font;
}

QSize SlideRenderer::surfaceFromSettings() {
    // A size the user chose ("176x144") wins over the phone's ("Auto").
    // Neither is taken beyond the picture limits: every slide is painted at it.
    const QStringList chosen =
        AppGlobals::setting("preferences", "MmsImageSize", "Auto").split(u'x');
    const QSize chosenSize(chosen.value(0).toInt(), chosen.value(1).toInt());
    if (chosen.size() == 2 && PictureLimits::fits(chosenSize))
        return chosenSize;
    const QStringList fields =
        AppGlobals::setting("preferences", "PhoneImageSize", "160,120,0").split(',');
    const QSize phone(fields.value(0).toInt(), fields.value(1).toInt());
    return PictureLimits::fits(phone) ? phone : QSize(160, 120);
}

QSize SlideRenderer::surfaceOf(const clsMessage& message) {
    for (const auto& slide : message.Slides())
        if (!slide->image().isNull())
            return slide->image().size();
    return surfaceFromSettings();
}

void SlideRenderer::paintBackground(QPainter& painter, const clsDrawObjects& objects,
                                    QSizeF surface) const {
    const QRectF area(QPointF(0, 0), surface);
    painter.fillRect(area, StoredColor::toQColor(objects.BackColor()));
    if (objects.BackType() == clsDrawObjects::BackColorOnly || objects.BackPicture().isEmpty())
        return;
    const QImage picture = objects.BackGround().isNull()
                               ? load(objects.BackPicture(), pixelsCovered(painter, area))
                               : objects.BackGround();
    if (!picture.isNull())
        painter.drawImage(area, picture);
}

void SlideRenderer::paintImage(QPainter& painter, const clsDrawObject& object) const {
    const QRectF box(object.XPos(), object.Ypos(), object.Width(), object.Height());
    const QImage picture = load(object.image(), pixelsCovered(painter, box));
    if (!picture.isNull())
        painter.drawImage(box, picture);
}

void SlideRenderer::paintText(QPainter& painter, const clsDrawObject& object) const {
    const DrawObjectProperties p = object.GetAllPproperties();
    painter.save();
    const QRectF box(p.x, p.y, p.w, p.h);
    painter.setClipRect(box, Qt::IntersectClip);
    painter.setFont(fontOf(p));
    painter.setPen(StoredColor::toQColor(p.fontColor));
    QTextOption option(alignmentOf(p.fontAlign) | Qt::AlignTop);
    option.setWrapMode(QTextOption::WordWrap);
    QString text = p.text;
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    painter.drawText(box, text, option);
    painter.restore();
}

QImage SlideRenderer::load(const QString& fileName, QSize drawnSize) const {
    // Names come from the message file: only a plain file of the work folder is read.
    const QString path = PlainFileName::existingFile(m_workFolder, fileName);
    try {
        if (!path.isEmpty())
            return cachedLoad(path, drawnSize);
    } catch (const AppError&) {
        // A picture that cannot be read is reported as missing, like an absent one.
    }
    if (!m_missing.contains(fileName))
        m_missing << fileName;
    return QImage();
}

QImage SlideRenderer::cachedLoad(const QString& path, QSize drawnSize) const {
    if (!m_cache)
        return MediaFrame::load(path, drawnSize);
    if (const QImage* cached = m_cache->find(path, drawnSize))
        return *cached;
    const QImage picture = MediaFrame::load(path, drawnSize);
    m_cache->insert(path, drawnSize, picture);
    return picture;
}
