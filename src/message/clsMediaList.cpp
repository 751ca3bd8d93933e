#include "clsMediaList.h"

#include "AppPaths.h"

#include <QDir>

void clsMediaList::LoadFiles(const QString& folder, const QString& extensions) {
    QStringList patterns;
    for (QString extension : extensions.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        extension = extension.trimmed();
        while (extension.startsWith(QLatin1Char('.')) || extension.startsWith(QLatin1Char('*')))
            extension.remove(0, 1);
        patterns << "*." + extension;
    }
    const QDir directory(AppPaths::toDisk(folder));
    const QStringList names =
        directory.entryList(patterns, QDir::Files, QDir::Name | QDir::IgnoreCase);
    for (const QString& name : names)
        Add(AppPaths::withSlash(directory.path()) + name);
}

clsMedia& clsMediaList::Add(const QString& fileName) {
    m_items.emplace_back(fileName);
    return m_items.back();
}
