#pragma once

#include <QImage>

class QPainter;

// A 24-bit picture in memory, blue-green-red, each scan line padded to four
// bytes. The pixels live in a QImage, whose rows run from the top of the
// picture down; every user here walks the picture top to bottom anyway.
class cDIBSection {
public:
    // False (and nothing allocated) for an empty size or one beyond
    // PictureLimits::MaxPixels.
    bool Create(int width, int height);
    // Draws the picture at the top left corner over a white ground, so
    // transparent parts come out white in formats without transparency.
    // Creates the bitmap in the picture's size first when none exists.
    bool LoadPictureBlt(const QImage& picture);
    void PaintPicture(QPainter& target, int x = 0, int y = 0) const;
    void ClearUp();

    int Width() const { return m_image.width(); }
    int Height() const { return m_image.height(); }
    int BytesPerScanLine() const { return static_cast<int>(m_image.bytesPerLine()); }
    uchar* DIBSectionBitsPtr() { return m_image.isNull() ? nullptr : m_image.bits(); }
    // Row 0 is the top line of the picture.
    uchar* ScanLine(int row) { return m_image.scanLine(row); }
    const uchar* ScanLine(int row) const { return m_image.constScanLine(row); }
    bool isNull() const { return m_image.isNull(); }
    const QImage& image() const { return m_image; }

private:
    QImage m_image;
};
