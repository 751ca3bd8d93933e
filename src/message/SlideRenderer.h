#pragma once

#include <QFont>
#include <QImage>
#include <QSize>
#include <QString>
#include <QStringList>

class PictureCache;
class QPainter;
class QRectF;
class clsDrawObject;
struct DrawObjectProperties;
class clsDrawObjects;
class clsMessage;
class clsSlide;

// Paints a slide picture from its draw objects: the background colour, the
// background picture stretched over the surface, then image and text objects
// in stacking order. Object positions are pixels of the editing surface
// (surfaceSize); any target size is reached by scaling.
class SlideRenderer {
public:
    SlideRenderer(QString workFolder, QSize surfaceSize);

    void paint(QPainter& painter, const clsDrawObjects& objects, const QRectF& target) const;
    QImage render(const clsDrawObjects& objects, QSize target) const;
    QImage render(const clsDrawObjects& objects) const { return render(objects, m_surface); }
    // The slide's picture: its in-memory image when it has one, else its draw
    // objects rendered at the surface size.
    QImage picture(const clsSlide& slide) const;
    // False for a slide of its colour alone, which has no picture of its own.
    static bool hasPicture(const clsSlide& slide);
    // That picture as a bitmap file.
    bool renderToFile(const clsSlide& slide, const QString& path) const;

    // Pictures are taken from cache, and put there, when one is given.
    void setCache(PictureCache* cache) { m_cache = cache; }

    // Work-folder files that the last paint could not load.
    QStringList missingFiles() const { return m_missing; }

    // The font a text object is drawn in. Sizes are points at 96 dots per
    // inch, whatever screen the program runs on, so a saved picture looks the
    // same everywhere. A font this computer lacks is drawn in its substitute.
    static QFont fontOf(const DrawObjectProperties& properties);

    // A stored alignment (0 left, 1 right, 2 centred) as Qt's; left for any other.
    static Qt::Alignment alignmentOf(int stored);

    // The surface size: "MmsImageSize" when it names one ("176x144"), else
    // the phone's, "PhoneImageSize" ("160,120,0" gives 160 x 120).
    static QSize surfaceFromSettings();
    // The surface a message was made at: the size of the slide pictures
    // saved with it; the settings' size for a message that has none.
    static QSize surfaceOf(const clsMessage& message);

private:
    void paintBackground(QPainter& painter, const clsDrawObjects& objects, QSizeF surface) const;
    void paintImage(QPainter& painter, const clsDrawObject& object) const;
    void paintText(QPainter& painter, const clsDrawObject& object) const;
    // The work-folder picture decoded for drawing into drawnSize device pixels.
    QImage load(const QString& fileName, QSize drawnSize) const;
    QImage cachedLoad(const QString& path, QSize drawnSize) const;

    QString m_workFolder;
    QSize m_surface;
    mutable QStringList m_missing;
    PictureCache* m_cache = nullptr;
};
