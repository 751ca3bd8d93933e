#pragma once

#include "MediaThumbnail.h"
#include "ThumbnailCache.h"

#include <QMutex>
#include <QObject>
#include <QSet>
#include <QThreadPool>
#include <memory>

// Makes thumbnails on threads of its own, so a folder of large photos never
// holds up the window: each request is answered by ready() on the window's
// thread, in the order the work finishes. A new batch (a folder reloaded)
// drops what is still waiting of the old one, and answers of an old batch
// that were already under way are not delivered. A row asked for again with
// a higher priority (it scrolled into sight) is made next, and only once.
class ThumbnailLoader : public QObject {
    Q_OBJECT
public:
    explicit ThumbnailLoader(QObject* parent = nullptr);
    ~ThumbnailLoader() override;

    // Starts a new batch; returns its number.
    int newBatch();
    void request(int row, const QString& path, int thumbType, int edge, int priority = 0);
    // Waits until every request is answered (or dropped) and delivered.
    void waitForDone();

signals:
    void ready(int row, const MediaThumbnail& thumbnail);

private:
    // What the threads share with the window: the batch and the rows taken.
    struct Work {
        QMutex mutex;
        int batch = 0;
        QSet<int> taken;
        bool take(int batch, int row);
    };
    void deliver(int batch, int row, const MediaThumbnail& thumbnail);

    ThumbnailCache m_cache;
    std::shared_ptr<Work> m_work;
    QThreadPool m_pool;
};
