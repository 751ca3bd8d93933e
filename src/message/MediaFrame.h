#pragma once

#include <QImage>
#include <QSize>
#include <QString>

// The picture a media file shows first: a still picture, an animation's
// first frame, or a video's first picture, so the slide and the browsers
// draw animations and videos the same way.
class MediaFrame {
public:
    // As PictureFile::load: with a size, decoded no larger than needed to be
    // drawn there. Throws AppError with a text for the user.
    static QImage load(const QString& path, QSize drawnSize = QSize());
    // An AVI or MP4, which only the video decoder reads.
    static bool isVideo(const QString& path);
};
