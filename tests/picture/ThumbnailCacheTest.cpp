#include "ThumbnailCache.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QTemporaryDir>
#include <gtest/gtest.h>

// The cache other desktop programs share: names, marks and refusals as the
// thumbnail standard has them, so their thumbnails and ours are one.
class ThumbnailCacheTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_root.isValid());
        qputenv("XDG_CACHE_HOME", QFile::encodeName(m_root.path() + "/cache"));
    }
    void TearDown() override { qunsetenv("XDG_CACHE_HOME"); }
    QString picture(const char* name, const QColor& colour) {
        const QString path = m_root.path() + u'/' + name;
        QImage image(300, 200, QImage::Format_RGB32);
        image.fill(colour);
        EXPECT_TRUE(image.save(path));
        return path;
    }
    QTemporaryDir m_root;
};

TEST_F(ThumbnailCacheTest, NamesFollowTheStandard) {
    // The standard's own example.
    EXPECT_EQ(ThumbnailCache::uriOf("/home/jens/photos/me.png"), "file:///home/jens/photos/me.png");
    EXPECT_TRUE(ThumbnailCache()
                    .thumbnailPath("/home/jens/photos/me.png")
                    .endsWith("/cache/thumbnails/normal/c6ee772d9e49320e97ec29a7eb5b1697.png"));
    EXPECT_TRUE(ThumbnailCache(ThumbnailCache::Large).thumbnailPath("/a").contains("/large/"));
    // Bytes outside the plain set are percent-encoded, as in every other program.
    EXPECT_EQ(ThumbnailCache::uriOf("/tmp/my photo #1.jpg"), "file:///tmp/my%20photo%20%231.jpg");
}

TEST_F(ThumbnailCacheTest, AThumbnailIsKeptSmallPrivateAndOnlyWhileTheFileIsUnchanged) {
    const QString path = picture("wide.png", Qt::red);
    const ThumbnailCache cache;
    ASSERT_TRUE(cache.store(path, QImage(path)));
    const QImage kept = cache.lookup(path);
    EXPECT_EQ(kept.size(), QSize(128, 85));
    EXPECT_EQ(QFileInfo(cache.thumbnailPath(path)).permissions() & 0x0077, 0);
    EXPECT_EQ(QFileInfo(ThumbnailCache::root()).permissions() & 0x0077, 0);

    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(-3600),
                                 QFileDevice::FileModificationTime));
    file.close();
    EXPECT_TRUE(cache.lookup(path).isNull()) << "a changed file is not shown from the cache";

    // A picture inside the cache is never given a thumbnail of its own.
    EXPECT_FALSE(cache.store(cache.thumbnailPath(path), kept));
}

TEST_F(ThumbnailCacheTest, AFailureIsRememberedUntilTheFileChanges) {
    const QString path = m_root.path() + "/broken.jpg";
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("not a picture");
    file.close();
    const ThumbnailCache cache;
    EXPECT_FALSE(cache.hasFailed(path));
    ASSERT_TRUE(cache.storeFailure(path));
    EXPECT_TRUE(cache.hasFailed(path));
    EXPECT_TRUE(cache.lookup(path).isNull());
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(120),
                                 QFileDevice::FileModificationTime));
    file.close();
    EXPECT_FALSE(cache.hasFailed(path));
}
