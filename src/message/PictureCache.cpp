#include "PictureCache.h"

#include <QFileInfo>

PictureCache::PictureCache(qint64 maxBytes) : m_pictures(maxBytes) {}

QString PictureCache::key(const QString& path, QSize drawnSize) {
    const QFileInfo file(path);
    return path + u'|' + QString::number(file.size()) + u'|' +
           QString::number(file.lastModified().toMSecsSinceEpoch()) + u'|' +
           QString::number(drawnSize.width()) + u'x' + QString::number(drawnSize.height());
}

const QImage* PictureCache::find(const QString& path, QSize drawnSize) const {
    return m_pictures.object(key(path, drawnSize));
}

void PictureCache::insert(const QString& path, QSize drawnSize, const QImage& picture) {
    m_pictures.insert(key(path, drawnSize), new QImage(picture), picture.sizeInBytes());
}
