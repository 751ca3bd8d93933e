#pragma once

#include "clsMedia.h"

#include <QString>
#include <QStringList>
#include <vector>

// The media files of one folder whose names match a list of patterns.
class clsMediaList {
public:
    // patterns: comma-separated wildcards ("*.bmp,MH_*.mid"); a bare
    // extension, with or without its dot, stands for "*.ext". Names are
    // compared without regard to case and listed by name; the list is
    // replaced. Only regular files are listed, never what a link leads to.
    void LoadFiles(const QString& folder, const QString& patterns);
    // The patterns as wildcards, in their order.
    static QStringList wildcards(const QString& patterns);

    void Clear() { m_items.clear(); }
    clsMedia& Add(const QString& fileName);
    clsMedia& Item(int index) { return m_items.at(size_t(index - 1)); } // 1-based
    int Count() const { return int(m_items.size()); }
    void Remove(int index) { m_items.erase(m_items.begin() + (index - 1)); }
    auto begin() const { return m_items.begin(); }
    auto end() const { return m_items.end(); }

private:
    std::vector<clsMedia> m_items;
};
