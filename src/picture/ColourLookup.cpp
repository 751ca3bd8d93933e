#include "ColourLookup.h"

#include "cPalette.h"

#include <algorithm>
#include <limits>

namespace {
int square(int value) {
    return value * value;
}
} // namespace

ColourLookup::ColourLookup(const cPalette& palette)
    : m_cells(CellsPerAxis * CellsPerAxis * CellsPerAxis), m_cellBuilt(m_cells.size(), false) {
    for (int i = 0; i < palette.Count(); ++i)
        m_entries.push_back({palette.Red(i), palette.Green(i), palette.Blue(i)});
}

int ColourLookup::closestIndex(int red, int green, int blue) {
    const int colour = (red << 16) | (green << 8) | blue;
    if (colour == m_lastColour)
        return m_lastIndex;
    int best = -1;
    int bestDistance = 0;
    for (int i : candidates(red, green, blue)) {
        const auto& entry = m_entries[i];
        const int distance =
            square(red - entry[0]) + square(green - entry[1]) + square(blue - entry[2]);
        if (best < 0 || distance < bestDistance) {
            best = i;
            bestDistance = distance;
        }
    }
    m_lastColour = colour;
    m_lastIndex = best;
    return best;
}

const std::vector<std::uint8_t>& ColourLookup::candidates(int red, int green, int blue) {
    const std::array<int, 3> cell{red >> CellShift, green >> CellShift, blue >> CellShift};
    const int slot = (cell[0] * CellsPerAxis + cell[1]) * CellsPerAxis + cell[2];
    if (m_cellBuilt[slot])
        return m_cells[slot];
    const int size = 1 << CellShift;
    std::vector<int> nearest(m_entries.size()), farthest(m_entries.size());
    int bound = std::numeric_limits<int>::max();
    for (size_t i = 0; i < m_entries.size(); ++i) {
        nearest[i] = farthest[i] = 0;
        for (int c = 0; c < 3; ++c) {
            const int low = cell[c] * size, high = low + size - 1;
            const int value = m_entries[i][c];
            nearest[i] += square(value < low ? low - value : value > high ? value - high : 0);
            farthest[i] += square(std::max(value - low, high - value));
        }
        bound = std::min(bound, farthest[i]);
    }
    for (size_t i = 0; i < m_entries.size(); ++i)
        if (nearest[i] <= bound)
            m_cells[slot].push_back(static_cast<std::uint8_t>(i));
    m_cellBuilt[slot] = true;
    return m_cells[slot];
}
