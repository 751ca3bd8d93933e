#pragma once

#include <QImage>
#include <QString>

// The thumbnails other desktop programs share: one PNG per file under
// $XDG_CACHE_HOME/thumbnails, named by the MD5 of the file's URI and marked
// with that URI and the file's modification time, so a thumbnail of a file
// that changed since is never shown. A file that could not be made into a
// thumbnail is remembered under "fail", so it is not decoded again on every
// visit while it stays unchanged.
class ThumbnailCache {
public:
    // The two sizes of the standard: 128 and 256 pixels at most on an edge.
    enum Size { Normal = 128, Large = 256 };

    explicit ThumbnailCache(Size size = Normal);

    // The cached thumbnail of path, or a null image when there is none that
    // is current.
    QImage lookup(const QString& path) const;
    // Keeps picture (scaled down to the cache's size when larger) as the
    // thumbnail of path; false when it cannot be written. Files inside the
    // cache itself are never kept, as the standard asks.
    bool store(const QString& path, const QImage& picture) const;
    // Remembers that path cannot be made into a thumbnail while it is unchanged.
    bool storeFailure(const QString& path) const;
    bool hasFailed(const QString& path) const;

    // The cache's root: $XDG_CACHE_HOME/thumbnails (~/.cache/thumbnails).
    static QString root();
    // "file:///…" with the path's bytes percent-encoded as the standard asks.
    static QString uriOf(const QString& path);
    // Where the thumbnail of path is, whether or not it exists.
    QString thumbnailPath(const QString& path) const;
    QString failurePath(const QString& path) const;

private:
    static bool matches(const QImage& thumbnail, const QString& uri, qint64 mtime);
    static bool write(const QString& target, QImage thumbnail, const QString& path);

    Size m_size;
};
