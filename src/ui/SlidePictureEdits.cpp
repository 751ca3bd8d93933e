#include "SlidePictureEdits.h"

#include "AppError.h"
#include "AppGlobals.h"
#include "ImageWriter.h"
#include "PictureFile.h"
#include "SlideRenderer.h"
#include "clsDrawObjects.h"
#include "clsMMSManager.h"
#include "clsMessage.h"

#include <QFileInfo>
#include <QFontMetrics>
#include <QImageReader>
#include <algorithm>

namespace {
QString noFile() {
    return AppGlobals::text("STR_NO_FILE_FOUND", "The file cannot be found.");
}

// A slide edited here is drawn from its objects again, not from the picture
// it was opened with.
void redrawFromObjects(clsSlide& slide) {
    slide.setImage(QImage());
}
} // namespace

SlidePictureEdits::SlidePictureEdits(MessageDocument& document) : m_document(document) {}

clsDrawObjects* SlidePictureEdits::objects() const {
    clsMessage* message = m_document.message();
    const int current = m_document.currentSlide();
    if (!message || current < 1 || current > message->Slides().Count())
        return nullptr;
    return &message->Slides().Item(current).DrawObjects();
}

QString SlidePictureEdits::workFolder() const {
    return m_document.manager().GetWorkFolderPath();
}

QList<int> SlidePictureEdits::stackingOrder() const {
    QList<int> order;
    const clsDrawObjects* all = objects();
    for (int i = 1; all && i <= all->Count(); ++i)
        order << i;
    std::stable_sort(order.begin(), order.end(),
                     [all](int a, int b) { return all->Item(a).zorder() < all->Item(b).zorder(); });
    return order;
}

QString SlidePictureEdits::toolTipText(const clsDrawObject& object) {
    if (object.typ() == QLatin1String("text"))
        return object.Text().simplified();
    return object.name().isEmpty() ? object.image() : object.name();
}

bool SlidePictureEdits::change(const char* key, const QString& fallback,
                               const std::function<void(clsDrawObjects& objects)>& edit,
                               bool nudge) {
    if (!objects())
        return false;
    using Field = MessageDocument::Field;
    return m_document.editSlide(
        key, fallback,
        [&](clsSlide& slide) {
            redrawFromObjects(slide);
            edit(slide.DrawObjects());
        },
        nudge ? std::optional<Field>(Field::ObjectNudge) : std::nullopt);
}

int SlidePictureEdits::add(const char* key, const QString& fallback,
                           DrawObjectProperties properties) {
    int added = 0;
    properties.zorder = topZorder() + 1;
    change(key, fallback, [&](clsDrawObjects& all) {
        all.Add().SetAllPproperties(properties);
        added = all.Count();
    });
    return added;
}

int SlidePictureEdits::topZorder() const {
    const QList<int> order = stackingOrder();
    return order.isEmpty() ? 0 : objects()->Item(order.last()).zorder();
}

// Object names only tell objects apart, so a free one is found by counting up.
QString SlidePictureEdits::uniqueName(const QString& base) const {
    QStringList taken;
    for (const auto& object : *objects())
        taken << object->name();
    QString name = base;
    for (int n = 2; taken.contains(name); ++n)
        name = base + u' ' + QString::number(n);
    return name;
}

QRect SlidePictureEdits::centred(QSize size) const {
    QRect box(QPoint(0, 0), size);
    box.moveCenter(QRect(QPoint(0, 0), m_surface).center());
    return box;
}

std::optional<QImage> SlidePictureEdits::decoded(const QString& source, QString* why) const {
    if (!QFileInfo(source).isFile()) {
        *why = noFile();
        return std::nullopt;
    }
    try {
        // Decoded as it will be drawn: a header alone can promise pixels
        // that the file does not hold.
        return PictureFile::load(source, m_surface);
    } catch (const AppError& error) {
        *why = error.description();
        return std::nullopt;
    }
}

QString SlidePictureEdits::bringIn(const QString& source, QString* why) const {
    if (!decoded(source, why))
        return QString();
    clsMMSManager& manager = m_document.manager();
    const QString name = manager.GetUniqueFileName(QStringLiteral("I"), source);
    return manager.CopyToWorkFolder(source, name, why) ? name : QString();
}

int SlidePictureEdits::addImage(const QString& source, std::optional<QPoint> at, QSize size,
                                QString* why) {
    if (!objects())
        return 0;
    const QString name = bringIn(source, why);
    if (name.isEmpty())
        return 0;
    if (size.isEmpty()) {
        const QSize own = QImageReader(workFolder() + name).size();
        size = own.boundedTo(m_surface) == own ? own : own.scaled(m_surface, Qt::KeepAspectRatio);
        size = size.expandedTo(QSize(1, 1));
    }
    QRect box = centred(size);
    if (at)
        box.moveTopLeft(*at);
    DrawObjectProperties image = DrawObjectProperties::forImage(name, box);
    image.name = uniqueName(QFileInfo(source).fileName());
    return add("STR_PICTURE_FILE", "Picture", image);
}

int SlidePictureEdits::addText(DrawObjectProperties text, std::optional<QPoint> at) {
    if (!objects())
        return 0;
    text.typ = QStringLiteral("text");
    if (text.w <= 0 || text.h <= 0) {
        const QFontMetrics metrics(SlideRenderer::fontOf(text));
        const int width = metrics.horizontalAdvance(text.text.section(u'\n', 0, 0)) + 8;
        const QSize size(std::clamp(width, 24, m_surface.width()), metrics.height() + 4);
        const QRect box = centred(size);
        text.x = box.x();
        text.y = box.y();
        text.w = box.width();
        text.h = box.height();
    }
    if (at) {
        text.x = at->x();
        text.y = at->y();
    }
    text.name = uniqueName(QStringLiteral("Text"));
    return add("STR_ADD_TEXT", "Add text", text);
}

int SlidePictureEdits::duplicate(int index, QString* why) {
    clsDrawObjects* all = objects();
    if (!all || index < 1 || index > all->Count())
        return 0;
    DrawObjectProperties copy = all->Item(index).GetAllPproperties();
    // The copy sits a little apart, so the user sees that there are two.
    copy.x += 8;
    copy.y += 8;
    if (copy.typ == QLatin1String("image")) {
        copy.image = bringIn(workFolder() + copy.image, why);
        if (copy.image.isEmpty())
            return 0;
    }
    copy.name = uniqueName(copy.name);
    return add("STR_DUPLICATE", "Duplicate", copy);
}

bool SlidePictureEdits::remove(int index) {
    const clsDrawObjects* all = objects();
    return all && index >= 1 && index <= all->Count() &&
           change("STR_DELETE", "Delete",
                  [index](clsDrawObjects& edited) { edited.Remove(index); });
}

bool SlidePictureEdits::bringToFront(int index) {
    return restack(index, true);
}

bool SlidePictureEdits::sendToBack(int index) {
    return restack(index, false);
}

// The object goes to the top or the bottom; the others keep their order.
bool SlidePictureEdits::restack(int index, bool toFront) {
    QList<int> order = stackingOrder();
    if (!order.removeOne(index))
        return false;
    toFront ? order.append(index) : order.prepend(index);
    return change(toFront ? "STR_BRING_TO_FRONT" : "STR_SEND_TO_BACK",
                  toFront ? QStringLiteral("Bring to front") : QStringLiteral("Send to back"),
                  [&](clsDrawObjects& all) {
                      for (int place = 0; place < order.size(); ++place)
                          all.Item(order[place]).setZorder(place + 1);
                  });
}

bool SlidePictureEdits::setProperties(int index, const DrawObjectProperties& properties,
                                      bool nudge) {
    const clsDrawObjects* all = objects();
    return all && index >= 1 && index <= all->Count() &&
           change(
               "STR_CHANGE_OBJECT", "Change object",
               [&](clsDrawObjects& edited) { edited.Item(index).SetAllPproperties(properties); },
               nudge);
}

void SlidePictureEdits::setGeometryLive(int index, const QRect& geometry) {
    clsDrawObjects* all = objects();
    if (!all || index < 1 || index > all->Count())
        return;
    clsDrawObject& object = all->Item(index);
    object.setXPos(geometry.x());
    object.setYpos(geometry.y());
    object.setWidth(geometry.width());
    object.setHeight(geometry.height());
    clsMessage* message = m_document.message();
    redrawFromObjects(message->Slides().Item(m_document.currentSlide()));
}

bool SlidePictureEdits::setBackgroundColor(qint64 color) {
    return change("STR_BACKGROUND_COLOR", "Background color", [color](clsDrawObjects& all) {
        all.setBackColor(color);
        all.setBackType(clsDrawObjects::BackColorOnly);
        all.setBackPicture(QString());
        all.setBackGround(QImage());
    });
}

qint64 SlidePictureEdits::backgroundColor() const {
    const clsDrawObjects* all = objects();
    return all ? all->BackColor() : 0;
}

bool SlidePictureEdits::setBackgroundPicture(const QString& source, QString* why) {
    if (!objects())
        return false;
    return isAnimated(source) ? setBackgroundAnimation(source, why)
                              : setBackgroundStill(source, why);
}

bool SlidePictureEdits::setBackgroundStill(const QString& source, QString* why) {
    if (!objects())
        return false;
    const std::optional<QImage> picture = decoded(source, why);
    const QString bitmap = picture ? writeBackgroundBitmap(*picture, why) : QString();
    return !bitmap.isEmpty() &&
           change("STR_PICTURE_BACKGROUND", "Background picture", [&](clsDrawObjects& all) {
               all.setBackType(clsDrawObjects::BackStill);
               all.setBackPicture(bitmap);
               all.setBackGround(QImage());
           });
}

// Drawn once at the slide's size, the background costs the slide's pixels
// however large the photo was, and shows exactly as it will be sent.
QString SlidePictureEdits::writeBackgroundBitmap(const QImage& picture, QString* why) const {
    const QImage drawn = picture.scaled(m_surface, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                             .convertToFormat(QImage::Format_RGB888);
    const QString name = m_document.manager().GetUniqueFileName(QStringLiteral("B"), "x.bmp");
    try {
        ImageWriter::writeAs(drawn, workFolder() + name, "bmp");
        return name;
    } catch (const AppError& error) {
        *why = error.description();
        return QString();
    }
}

// An animation or a video plays on the phone as it is: it is taken in whole,
// with its length as the background's, and a slide picture of it is one
// of its own kind.
bool SlidePictureEdits::setBackgroundAnimation(const QString& source, QString* why) {
    clsMMSManager& manager = m_document.manager();
    const QString name = manager.GetUniqueFileName(QStringLiteral("B"), source);
    if (!manager.CopyToWorkFolder(source, name, why))
        return false;
    const qint64 length = clsDrawObjects::AnimationLength(workFolder() + name);
    clsDrawObjects::closeDevice();
    if (length <= 0) {
        manager.DeleteWorkFolderFile(name);
        *why = AppGlobals::text("ERR_ANIMATION_UNPLAYABLE",
                                "The animation %0 cannot be played: the file is damaged or "
                                "not an animation the program reads.",
                                {QFileInfo(source).fileName()});
        return false;
    }
    return change("STR_PICTURE_BACKGROUND", "Background picture", [&](clsDrawObjects& all) {
        all.setBackType(clsDrawObjects::BackAnimated);
        all.setBackPicture(name);
        all.setBackDuration(length);
        all.setBackGround(QImage());
    });
}

bool SlidePictureEdits::isAnimated(const QString& path) {
    if (clsDrawObjects::KindOfFile(path) != clsDrawObjects::BackAnimated)
        return false;
    QImageReader reader(path);
    // A video is no picture Qt reads; a GIF is an animation with more than one frame.
    return !reader.canRead() || (reader.supportsAnimation() && reader.imageCount() != 1);
}
