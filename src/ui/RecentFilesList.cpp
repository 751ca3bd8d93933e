#include "RecentFilesList.h"

#include "clsPropertiesXML.h"

namespace {
const QString kSection = QStringLiteral("RecentFiles");
constexpr int kNumberStep = 256;
} // namespace

void RecentFilesList::SetRecentFilesListSize(int size) {
    m_size = std::max(size, 1);
    while (m_paths.size() > m_size)
        m_paths.removeFirst();
}

void RecentFilesList::AddToRecentFilesList(const QString& path) {
    if (path.isEmpty())
        return;
    if (m_paths.size() >= m_size)
        m_paths.removeFirst();
    if (!m_paths.contains(path))
        m_paths.append(path);
}

void RecentFilesList::RemoveFromRecentFilesList(const QString& path) {
    m_paths.removeAll(path);
}

void RecentFilesList::SetRecentFilesList(const QStringList& paths) {
    m_paths.clear();
    for (const QString& path : paths)
        AddToRecentFilesList(path);
}

bool RecentFilesList::choose(int number) {
    const int position = number / kNumberStep;
    if (number % kNumberStep != RecentCommand || position < 1 || position > m_paths.size())
        return false;
    m_selected = position;
    return true;
}

QString RecentFilesList::descriptor(const QString& caption) const {
    QString entry = (m_paths.isEmpty() ? QStringLiteral("!") : QString()) + caption + ";0";
    for (int i = 0; i < m_paths.size(); ++i)
        entry += u'|' + shown(m_paths[i]) + u';' +
                 QString::number((i + 1) * kNumberStep + RecentCommand);
    return entry;
}

QString RecentFilesList::shown(const QString& path) {
    QString text = path;
    text.replace(u',', QChar(0x201a)); // single low quotation mark
    text.replace(u'|', QChar(0x2223)); // divides
    text.replace(u';', QChar(0x037e)); // Greek question mark
    text.replace(u'!', QChar(0x01c3)); // letter retroflex click
    text.replace(u'#', QChar(0xff03)); // fullwidth number sign
    return text;
}

void RecentFilesList::load(clsPropertiesXML& settings) {
    QStringList entries;
    settings.GetPropList(kSection, entries, "=");
    QStringList paths;
    for (const QString& entry : entries)
        paths << entry.section(u'=', 1);
    SetRecentFilesList(paths);
}

void RecentFilesList::save(clsPropertiesXML& settings) const {
    // One key a path: a list of name=value texts would cut a path holding "=".
    settings.DeletePropSection(kSection);
    for (int i = 0; i < m_paths.size(); ++i)
        settings.SetProp(kSection, QStringLiteral("File%1").arg(i + 1), m_paths[i]);
}
