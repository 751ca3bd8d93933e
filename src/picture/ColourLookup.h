#pragma once

#include <array>
#include <cstdint>
#include <vector>

class cPalette;

// Answers cPalette::ClosestIndex for many colours quickly, with exactly the
// same result. The colour cube is cut into cells; for each cell visited, only
// the entries that can be nearest to some colour inside it are kept (those not
// farther from the cell than the best entry's farthest corner), in index order,
// so the lowest index still wins a tie.
class ColourLookup {
public:
    explicit ColourLookup(const cPalette& palette);
    int closestIndex(int red, int green, int blue);

private:
    static constexpr int CellShift = 4;
    static constexpr int CellsPerAxis = 256 >> CellShift;
    const std::vector<std::uint8_t>& candidates(int red, int green, int blue);

    std::vector<std::array<int, 3>> m_entries;
    std::vector<std::vector<std::uint8_t>> m_cells;
    std::vector<bool> m_cellBuilt;
    int m_lastColour = -1;
    int m_lastIndex = -1;
};
