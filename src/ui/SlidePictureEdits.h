#pragma once

#include "MessageDocument.h"
#include "clsDrawObject.h"

#include <QImage>
#include <QList>
#include <QPoint>
#include <QRect>
#include <QSize>
#include <QString>
#include <optional>

class clsDrawObjects;
class clsSlide;

// What the picture editor does to the current slide's picture, each change
// one step of the document's history. Objects are named by their 1-based
// place among the slide's draw objects; files brought in get fresh names in
// the work folder and stay there while an undo step may need them.
class SlidePictureEdits {
public:
    explicit SlidePictureEdits(MessageDocument& document);

    void setSurface(QSize surface) { m_surface = surface; }
    QSize surface() const { return m_surface; }
    // The current slide's objects; nullptr without a slide.
    clsDrawObjects* objects() const;
    QString workFolder() const;
    // Indexes from the bottom of the stack to its top.
    QList<int> stackingOrder() const;
    // How an object is named to the user: a text by its text, a picture by
    // the name of the file it came from.
    static QString toolTipText(const clsDrawObject& object);

    // Each adding edit returns the new object's index, or 0 with *why saying
    // what the user should hear.
    // The picture file source as an image object, at its own size (shrunk to
    // fit the slide) or at size; at is its top left corner, the slide's
    // centre without one.
    int addImage(const QString& source, std::optional<QPoint> at, QSize size, QString* why);
    // A text object; one without a size gets a box that fits its text.
    int addText(DrawObjectProperties text, std::optional<QPoint> at);
    // The copy's index; 0, with *why when there is a reason to tell, when none was made.
    int duplicate(int index, QString* why);
    bool remove(int index);
    bool bringToFront(int index);
    bool sendToBack(int index);
    // Every property of the object at once. A nudge merges with the nudges
    // before it into one step.
    bool setProperties(int index, const DrawObjectProperties& properties, bool nudge = false);
    // Without a step, inside the document's live edit.
    void setGeometryLive(int index, const QRect& geometry);

    // The colour alone becomes the background.
    bool setBackgroundColor(qint64 color);
    qint64 backgroundColor() const;
    // The picture, drawn at the slide's size, becomes the background bitmap;
    // an animation or a video is taken whole and plays for its length.
    bool setBackgroundPicture(const QString& source, QString* why);
    // The first picture of source, animated or not, drawn as the background bitmap.
    bool setBackgroundStill(const QString& source, QString* why);
    // A GIF of more than one frame, or a video.
    static bool isAnimated(const QString& path);

private:
    bool restack(int index, bool toFront);
    bool change(const char* key, const QString& fallback,
                const std::function<void(clsDrawObjects& objects)>& edit, bool nudge = false);
    int add(const char* key, const QString& fallback, DrawObjectProperties properties);
    int topZorder() const;
    QString uniqueName(const QString& base) const;
    // The picture as drawn on the slide; nothing, with *why, when it is no picture.
    std::optional<QImage> decoded(const QString& source, QString* why) const;
    // A copy of the picture in the work folder, under a fresh "I" name.
    QString bringIn(const QString& source, QString* why) const;
    QString writeBackgroundBitmap(const QImage& picture, QString* why) const;
    bool setBackgroundAnimation(const QString& source, QString* why);
    QRect centred(QSize size) const;

    MessageDocument& m_document;
    QSize m_surface{160, 120};
};
