#pragma once

#include <QImage>
#include <QSize>
#include <QString>

class ThumbnailCache;

// What a media browser shows of a file: a small picture and a line of detail
// (a sound's kind and length, an animation's length), or the reason the file
// cannot be used. Made off the window's thread: it reads only the file and
// the thumbnail cache, and never blocks on a device.
class MediaThumbnail {
public:
    // The browser kinds, numbered as the browsers are.
    enum ThumbType { Background = 1, Picture = 2, Sound = 3, Animation = 4 };

    QImage picture;
    QString detail;
    QString error;

    // edge: the largest width and height the picture is drawn at.
    static MediaThumbnail make(const QString& path, int thumbType, const ThumbnailCache& cache,
                               int edge);

private:
    static MediaThumbnail still(const QString& path, const ThumbnailCache& cache, int edge);
    static MediaThumbnail sound(const QString& path);
};
