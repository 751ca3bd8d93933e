#include "ThumbnailLoader.h"

#include <QCoreApplication>
#include <QMetaObject>

ThumbnailLoader::ThumbnailLoader(QObject* parent)
    : QObject(parent), m_batch(std::make_shared<std::atomic<int>>(0)) {
    // Decoding is bound by the processor; one thread is left to the window.
    m_pool.setMaxThreadCount(std::max(1, QThread::idealThreadCount() - 1));
}

ThumbnailLoader::~ThumbnailLoader() {
    newBatch();
    m_pool.waitForDone();
}

int ThumbnailLoader::newBatch() {
    m_pool.clear();
    return ++*m_batch;
}

void ThumbnailLoader::request(int row, const QString& path, int thumbType, int edge) {
    const int batch = *m_batch;
    std::shared_ptr<std::atomic<int>> current = m_batch;
    const ThumbnailCache cache = m_cache;
    m_pool.start([this, batch, current, cache, row, path, thumbType, edge] {
        if (*current != batch)
            return;
        const MediaThumbnail made = MediaThumbnail::make(path, thumbType, cache, edge);
        QMetaObject::invokeMethod(
            this, [this, batch, row, made] { deliver(batch, row, made); }, Qt::QueuedConnection);
    });
}

void ThumbnailLoader::deliver(int batch, int row, const MediaThumbnail& thumbnail) {
    if (batch == *m_batch)
        emit ready(row, thumbnail);
}

void ThumbnailLoader::waitForDone() {
    m_pool.waitForDone();
    QCoreApplication::sendPostedEvents(this);
}
