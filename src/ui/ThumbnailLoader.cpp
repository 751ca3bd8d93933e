#include "ThumbnailLoader.h"

#include <QCoreApplication>
#include <QMetaObject>

bool ThumbnailLoader::Work::take(int wanted, int row) {
    const QMutexLocker lock(&mutex);
    if (wanted != batch || taken.contains(row))
        return false;
    taken.insert(row);
    return true;
}

ThumbnailLoader::ThumbnailLoader(QObject* parent)
    : QObject(parent), m_work(std::make_shared<Work>()) {
    // Decoding is bound by the processor; one thread is left to the window.
    m_pool.setMaxThreadCount(std::max(1, QThread::idealThreadCount() - 1));
}

ThumbnailLoader::~ThumbnailLoader() {
    newBatch();
    m_pool.waitForDone();
}

int ThumbnailLoader::newBatch() {
    m_pool.clear();
    const QMutexLocker lock(&m_work->mutex);
    m_work->taken.clear();
    return ++m_work->batch;
}

void ThumbnailLoader::request(int row, const QString& path, int thumbType, int edge, int priority) {
    int batch = 0;
    {
        const QMutexLocker lock(&m_work->mutex);
        batch = m_work->batch;
    }
    std::shared_ptr<Work> work = m_work;
    const ThumbnailCache cache = m_cache;
    m_pool.start(
        [this, work, batch, cache, row, path, thumbType, edge] {
            if (!work->take(batch, row))
                return;
            const MediaThumbnail made = MediaThumbnail::make(path, thumbType, cache, edge);
            QMetaObject::invokeMethod(
                this, [this, batch, row, made] { deliver(batch, row, made); },
                Qt::QueuedConnection);
        },
        priority);
}

void ThumbnailLoader::deliver(int batch, int row, const MediaThumbnail& thumbnail) {
    bool current = false;
    {
        const QMutexLocker lock(&m_work->mutex);
        current = batch == m_work->batch;
    }
    if (current)
        emit ready(row, thumbnail);
}

void ThumbnailLoader::waitForDone() {
    m_pool.waitForDone();
    QCoreApplication::sendPostedEvents(this);
}
