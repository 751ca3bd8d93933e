#pragma once

#include "clsMedia.h"

#include <QString>
#include <vector>

// The media files of one folder whose extensions are in a list.
class clsMediaList {
public:
    // extensions: comma-separated, with or without dots ("bmp,gif" or ".bmp,.gif"),
    // compared without regard to case. Files are listed by name.
    void LoadFiles(const QString& folder, const QString& extensions);

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
