#include "ThumbnailCache.h"

#include "AppPaths.h"
#include "AtomicFile.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QStandardPaths>
#include <QUrl>

namespace {
const char* const UriKey = "Thumb::URI";
const char* const MTimeKey = "Thumb::MTime";
const char* const SizeKey = "Thumb::Size";
// Failures are kept per program and version: another program may read the
// file where this one could not.
const char* const FailureFolder = "fail/vellumo-1";

qint64 modificationTime(const QFileInfo& file) {
    return file.lastModified().toSecsSinceEpoch();
}

QString folderFor(ThumbnailCache::Size size) {
    return size == ThumbnailCache::Large ? QStringLiteral("large") : QStringLiteral("normal");
}

QString md5Name(const QString& uri) {
    return QString::fromLatin1(
               QCryptographicHash::hash(uri.toUtf8(), QCryptographicHash::Md5).toHex()) +
           QStringLiteral(".png");
}

// The cache is private to the user: its folders are made readable by nobody
// else, whatever the umask says.
bool makePrivateFolder(const QString& folder) {
    if (!AppPaths::createPath(folder))
        return false;
    QString path = folder;
    const QString top = ThumbnailCache::root();
    while (path.startsWith(top) && path.size() >= top.size()) {
        QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        path = QFileInfo(path).path();
    }
    return true;
}
} // namespace

ThumbnailCache::ThumbnailCache(Size size) : m_size(size) {}

QString ThumbnailCache::root() {
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
           QStringLiteral("/thumbnails");
}

QString ThumbnailCache::uriOf(const QString& path) {
    return QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath()).toString(QUrl::FullyEncoded);
}

QString ThumbnailCache::thumbnailPath(const QString& path) const {
    return root() + u'/' + folderFor(m_size) + u'/' + md5Name(uriOf(path));
}

QString ThumbnailCache::failurePath(const QString& path) const {
    return root() + u'/' + QLatin1String(FailureFolder) + u'/' + md5Name(uriOf(path));
}

bool ThumbnailCache::matches(const QImage& thumbnail, const QString& uri, qint64 mtime) {
    return !thumbnail.isNull() && thumbnail.text(UriKey) == uri &&
           thumbnail.text(MTimeKey) == QString::number(mtime);
}

QImage ThumbnailCache::lookup(const QString& path) const {
    const QFileInfo file(path);
    if (!file.isFile())
        return QImage();
    QImageReader reader(thumbnailPath(path), "png");
    // A thumbnail larger than the size it is filed under was not written by
    // a program that keeps the standard: it is not drawn.
    if (reader.size().width() > m_size || reader.size().height() > m_size)
        return QImage();
    const QImage thumbnail = reader.read();
    return matches(thumbnail, uriOf(path), modificationTime(file)) ? thumbnail : QImage();
}

bool ThumbnailCache::store(const QString& path, const QImage& picture) const {
    if (picture.isNull())
        return false;
    QImage thumbnail = picture;
    if (picture.width() > m_size || picture.height() > m_size)
        thumbnail = picture.scaled(m_size, m_size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    return write(thumbnailPath(path), thumbnail, path);
}

bool ThumbnailCache::storeFailure(const QString& path) const {
    QImage marker(1, 1, QImage::Format_ARGB32);
    marker.fill(Qt::transparent);
    return write(failurePath(path), marker, path);
}

bool ThumbnailCache::hasFailed(const QString& path) const {
    const QFileInfo file(path);
    const QImage marker(failurePath(path), "png");
    return file.isFile() && matches(marker, uriOf(path), modificationTime(file));
}

bool ThumbnailCache::write(const QString& target, QImage thumbnail, const QString& path) {
    const QFileInfo file(path);
    const QString absolute = file.absoluteFilePath();
    if (!file.isFile() || absolute.startsWith(root() + u'/'))
        return false;
    if (!makePrivateFolder(QFileInfo(target).path()))
        return false;
    thumbnail.setText(UriKey, uriOf(path));
    thumbnail.setText(MTimeKey, QString::number(modificationTime(file)));
    thumbnail.setText(SizeKey, QString::number(file.size()));
    thumbnail.setText("Software", QStringLiteral("Vellumo"));
    // Written whole beside the target and renamed, so a reader in another
    // program never sees half a thumbnail.
    AtomicFile out(target);
    if (!out.open(QIODevice::WriteOnly))
        return false;
    out.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    return thumbnail.save(&out, "png") && out.commit();
}
