#include "cPalette.h"

#include "ColourLookup.h"
#include "ColourOctree.h"
#include "EventPump.h"
#include "cDIBSection.h"

#include <algorithm>
#include <cstdlib>

namespace {
// The error share a neighbour receives, truncated toward zero, added and clamped.
void spread(uchar* pixel, const int error[3], int weight) {
    for (int c = 0; c < 3; ++c)
        pixel[c] = static_cast<uchar>(std::clamp(pixel[c] + error[c] * weight / 16, 0, 255));
}
} // namespace

cPalette::cPalette() = default;
cPalette::~cPalette() = default;

bool cPalette::Add(int red, int green, int blue) {
    if (Count() >= MaxEntries)
        return false;
    m_entries.push_back(qRgb(red, green, blue));
    return true;
}

int cPalette::ClosestIndex(int red, int green, int blue) const {
    int best = -1;
    int bestDistance = 0;
    for (int i = 0; i < Count(); ++i) {
        const int dr = red - Red(i), dg = green - Green(i), db = blue - Blue(i);
        const int distance = dr * dr + dg * dg + db * db;
        if (best < 0 || distance < bestDistance) {
            best = i;
            bestDistance = distance;
        }
    }
    return best;
}

void cPalette::CreateOptimal(const cDIBSection& dib, int maxColours) {
    Clear();
    m_octree = std::make_unique<ColourOctree>();
    for (int y = 0; y < dib.Height(); ++y) {
        const uchar* pixel = dib.ScanLine(y);
        for (int x = 0; x < dib.Width(); ++x, pixel += 3)
            m_octree->addColour(pixel[2], pixel[1], pixel[0]);
    }
    for (QRgb colour : m_octree->palette(maxColours))
        Add(qRed(colour), qGreen(colour), qBlue(colour));
    EraseNodes();
}

void cPalette::CreateStandard() {
    Clear();
    for (int r = 0; r < 6; ++r)
        for (int g = 0; g < 6; ++g)
            for (int b = 0; b < 6; ++b)
                Add(r * 51, g * 51, b * 51);
    for (int i = 1; i <= 40; ++i) {
        const int grey = i * 255 / 41;
        Add(grey, grey, grey);
    }
}

void cPalette::EraseNodes() {
    m_octree.reset();
}

void cPalette::Clear() {
    EraseNodes();
    m_entries.clear();
}

QImage cPalette::ApplyPalette(cDIBSection& dib, bool errorDiffusion) const {
    QImage indexed(dib.Width(), dib.Height(), QImage::Format_Indexed8);
    if (indexed.isNull() || Count() == 0)
        return QImage();
    indexed.setColorTable(colorTable());
    ColourLookup lookup(*this);
    for (int y = 0; y < dib.Height(); ++y) {
        uchar* pixel = dib.ScanLine(y);
        uchar* below = y + 1 < dib.Height() ? dib.ScanLine(y + 1) : nullptr;
        uchar* index = indexed.scanLine(y);
        for (int x = 0; x < dib.Width(); ++x, pixel += 3) {
            const int entry = lookup.closestIndex(pixel[2], pixel[1], pixel[0]);
            index[x] = static_cast<uchar>(entry);
            const QRgb chosen = m_entries[entry];
            // Blue, green, red, in the order of the bytes.
            const int error[3] = {pixel[0] - qBlue(chosen), pixel[1] - qGreen(chosen),
                                  pixel[2] - qRed(chosen)};
            pixel[0] = static_cast<uchar>(qBlue(chosen));
            pixel[1] = static_cast<uchar>(qGreen(chosen));
            pixel[2] = static_cast<uchar>(qRed(chosen));
            if (!errorDiffusion ||
                std::abs(error[0]) + std::abs(error[1]) + std::abs(error[2]) <= 3)
                continue;
            if (x + 1 < dib.Width())
                spread(pixel + 3, error, 7);
            if (below)
                spread(below + 3 * x, error, 4);
        }
        pumpEvents();
    }
    return indexed;
}
