#include "MediaFolder.h"

#include "AppGlobals.h"
#include "AppPaths.h"
#include "PlainFileName.h"

#include <QDir>
#include <QRegularExpression>
#include <QUrl>

namespace {
QString lastSegment(const QString& name) {
    const qsizetype slash = std::max(name.lastIndexOf(u'/'), name.lastIndexOf(u'\\'));
    return name.mid(slash + 1);
}

// "cid:<image1.jpg>" names the part whose Content-ID is image1.jpg, which a
// presentation's folder holds under that name.
bool isContentId(const QString& source) {
    return source.startsWith(QLatin1String("cid:"), Qt::CaseInsensitive);
}

QString withoutContentId(const QString& source) {
    if (!isContentId(source))
        return source;
    QString id = source.mid(4).trimmed();
    if (id.startsWith(u'<') && id.endsWith(u'>'))
        id = id.mid(1, id.size() - 2);
    return id;
}

// "http:", "file:" and other schemes reach beyond the presentation; a letter
// and a colon alone is a drive, which the last segment takes care of.
bool namesAnotherPlace(const QString& source) {
    static const QRegularExpression scheme(QStringLiteral("^[A-Za-z][A-Za-z0-9+.-]+:"));
    return scheme.match(source).hasMatch();
}
} // namespace

MediaFolder::MediaFolder(const QString& folder) : m_folder(AppPaths::withSlash(folder)) {
    const QStringList names =
        QDir(m_folder).entryList(QDir::Files | QDir::Hidden | QDir::System, QDir::Name);
    for (const QString& name : names)
        if (!m_byFoldedName.contains(name.toCaseFolded())) // the first in order wins
            m_byFoldedName.insert(name.toCaseFolded(), name);
}

QString MediaFolder::resolve(const QString& source, QString* why) const {
    const QString value = source.trimmed();
    if (namesAnotherPlace(value) && !isContentId(value)) {
        if (why)
            *why = AppGlobals::text("STR_IMPORT_NOT_IN_FOLDER",
                                    "\"%0\" is not a file beside the presentation", {source});
        return QString();
    }
    const QString path = find(withoutContentId(value), why);
    const QString decoded = QUrl::fromPercentEncoding(value.toUtf8());
    if (!path.isEmpty() || decoded == value)
        return path;
    return find(withoutContentId(decoded), why);
}

QString MediaFolder::find(const QString& name, QString* why) const {
    QString onDisk = byName(name);
    if (onDisk.isEmpty())
        onDisk = byName(lastSegment(name));
    return PlainFileName::existingFile(m_folder, onDisk.isEmpty() ? name : onDisk, why);
}

// The file of this folder called name, or so called but for letter case.
QString MediaFolder::byName(const QString& name) const {
    if (!PlainFileName::isPlain(name))
        return QString();
    if (QFileInfo::exists(m_folder + name) || QFileInfo(m_folder + name).isSymLink())
        return name;
    return m_byFoldedName.value(name.toCaseFolded());
}
