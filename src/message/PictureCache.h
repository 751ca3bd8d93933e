#pragma once

#include <QCache>
#include <QImage>
#include <QSize>
#include <QString>

// Decoded pictures kept for repainting: an editor repaints its slide for
// every mouse move, and decoding its pictures each time would make dragging
// stutter. An entry is keyed by the file's path, size and time of change and
// by the size it was decoded for, so a changed file is never shown stale.
class PictureCache {
public:
    explicit PictureCache(qint64 maxBytes = 96LL * 1024 * 1024);

    // The cached picture, or nullptr.
    const QImage* find(const QString& path, QSize drawnSize) const;
    void insert(const QString& path, QSize drawnSize, const QImage& picture);
    void clear() { m_pictures.clear(); }

private:
    static QString key(const QString& path, QSize drawnSize);

    mutable QCache<QString, QImage> m_pictures;
};
