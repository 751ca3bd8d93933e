#include "clsMediaList.h"

#include "AppPaths.h"

#include <QDir>
#include <QFileInfo>

QStringList clsMediaList::wildcards(const QString& patterns) {
    QStringList result;
    for (QString pattern : patterns.split(QLatin1Char(','), Qt::SkipEmptyParts)) {
        pattern = pattern.trimmed();
        if (pattern.contains(QLatin1Char('*')) || pattern.contains(QLatin1Char('?'))) {
            result << pattern;
            continue;
        }
        while (pattern.startsWith(QLatin1Char('.')))
            pattern.remove(0, 1);
        if (!pattern.isEmpty())
            result << "*." + pattern;
    }
    return result;
}

void clsMediaList::LoadFiles(const QString& folder, const QString& patterns) {
    Clear();
    const QStringList filters = wildcards(patterns);
    // No folder is no folder, not the current one.
    if (filters.isEmpty() || folder.isEmpty())
        return;
    const QDir directory(AppPaths::toDisk(folder));
    const QFileInfoList files = directory.entryInfoList(filters, QDir::Files | QDir::NoSymLinks,
                                                        QDir::Name | QDir::IgnoreCase);
    for (const QFileInfo& file : files)
        Add(file.absoluteFilePath());
}

clsMedia& clsMediaList::Add(const QString& fileName) {
    m_items.emplace_back(fileName);
    return m_items.back();
}
