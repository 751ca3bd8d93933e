#pragma once

#include "MediaThumbnail.h"
#include "ThumbnailCache.h"

#include <QObject>
#include <QThreadPool>
#include <atomic>
#include <memory>

// Makes thumbnails on threads of its own, so a folder of large photos never
// holds up the window: each request is answered by ready() on the window's
// thread, in the order the work finishes. A new batch (a folder reloaded)
// drops what is still waiting of the old one, and answers of an old batch
// that were already under way are not delivered.
class ThumbnailLoader : public QObject {
    Q_OBJECT
public:
    explicit ThumbnailLoader(QObject* parent = nullptr);
    ~ThumbnailLoader() override;

    // Starts a new batch; returns its number.
    int newBatch();
    void request(int row, const QString& path, int thumbType, int edge);
    // Waits until every request is answered (or dropped) and delivered.
    void waitForDone();
    int batch() const { return *m_batch; }

signals:
    void ready(int row, const MediaThumbnail& thumbnail);

private:
    void deliver(int batch, int row, const MediaThumbnail& thumbnail);

    ThumbnailCache m_cache;
    std::shared_ptr<std::atomic<int>> m_batch;
    QThreadPool m_pool;
};
