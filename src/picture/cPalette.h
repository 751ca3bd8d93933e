#pragma once

#include <QImage>
#include <QList>
#include <QRgb>
#include <memory>
#include <vector>

class cDIBSection;
class ColourOctree;

// A palette of at most 256 colours: built as the optimal palette of a picture
// (octree) or as the fixed standard palette, and used to map a picture onto it.
class cPalette {
public:
    static constexpr int MaxEntries = 256;

    cPalette();
    ~cPalette();
    cPalette(const cPalette&) = delete;
    cPalette& operator=(const cPalette&) = delete;

    // False when the palette is full.
    bool Add(int red, int green, int blue);
    // The entry nearest to the colour (squared distance, lowest index on a
    // tie); -1 for an empty palette.
    int ClosestIndex(int red, int green, int blue) const;
    int Count() const { return static_cast<int>(m_entries.size()); }
    int Red(int index) const { return qRed(m_entries.at(index)); }
    int Green(int index) const { return qGreen(m_entries.at(index)); }
    int Blue(int index) const { return qBlue(m_entries.at(index)); }
    QList<QRgb> colorTable() const { return QList<QRgb>(m_entries.begin(), m_entries.end()); }

    // The best palette of at most maxColours entries for the picture. Throws
    // AppError "Error in reducing nodes" when maxColours is below one.
    void CreateOptimal(const cDIBSection& dib, int maxColours = MaxEntries);
    // 216 colours of a 6x6x6 cube and a ramp of 40 greys between its greys: a
    // palette that serves any picture when no optimal one is wanted.
    void CreateStandard();
    void EraseNodes();
    void Clear();

    // Replaces every pixel of the picture by its palette entry, left to right
    // and top to bottom, and returns the same picture as palette indices.
    // With error diffusion, 7/16 of a pixel's error goes to the pixel on its
    // right and 4/16 to the one below, when the error exceeds 3 in total.
    QImage ApplyPalette(cDIBSection& dib, bool errorDiffusion) const;

private:
    std::vector<QRgb> m_entries;
    std::unique_ptr<ColourOctree> m_octree;
};
