#include "FreeImageBitmap.h"

#include "FreeImageSource.h"

#include <cstring>

namespace {
// The library keeps a Windows bitmap's byte order: blue, green, red (and
// alpha), which is Qt's order for these formats on a little-endian machine.
static_assert(FREEIMAGE_COLORORDER == FREEIMAGE_COLORORDER_BGR,
              "rows are copied as they are, in little-endian byte order");
constexpr QImage::Format ThreeBytes = QImage::Format_BGR888;
constexpr QImage::Format FourBytes = QImage::Format_ARGB32;
constexpr QImage::Format FourBytesOpaque = QImage::Format_RGB32;
} // namespace

QImage FreeImageBitmap::toImage(FIBITMAP* bitmap) {
    if (FreeImage_GetImageType(bitmap) != FIT_BITMAP)
        return converted(bitmap);
    switch (FreeImage_GetBPP(bitmap)) {
    case 1:
        return withPalette(bitmap, QImage::Format_Mono);
    case 8:
        return withPalette(bitmap, QImage::Format_Indexed8);
    case 24:
        return copyRows(bitmap, ThreeBytes);
    case 32:
        return trueColour(bitmap);
    default:
        return converted(bitmap);
    }
}

QImage FreeImageBitmap::copyRows(FIBITMAP* bitmap, QImage::Format format) {
    const int width = int(FreeImage_GetWidth(bitmap));
    const int height = int(FreeImage_GetHeight(bitmap));
    QImage image(width, height, format);
    if (image.isNull())
        return image;
    const size_t rowBytes = (size_t(width) * FreeImage_GetBPP(bitmap) + 7) / 8;
    // The library stores the bottom row first.
    for (int y = 0; y < height; ++y)
        std::memcpy(image.scanLine(y), FreeImage_GetScanLine(bitmap, height - 1 - y), rowBytes);
    return image;
}

QImage FreeImageBitmap::withPalette(FIBITMAP* bitmap, QImage::Format format) {
    QImage image = copyRows(bitmap, format);
    if (image.isNull())
        return image;
    const RGBQUAD* palette = FreeImage_GetPalette(bitmap);
    const unsigned used = palette ? FreeImage_GetColorsUsed(bitmap) : 0;
    const unsigned alphas =
        FreeImage_IsTransparent(bitmap) ? FreeImage_GetTransparencyCount(bitmap) : 0;
    const BYTE* alpha = FreeImage_GetTransparencyTable(bitmap);
    // Every index the bits can hold gets a colour, so a file whose pixels
    // point past its palette cannot make a reader look past the table.
    QList<QRgb> table(qsizetype(1) << FreeImage_GetBPP(bitmap), qRgb(0, 0, 0));
    for (unsigned i = 0; i < used && i < unsigned(table.size()); ++i)
        table[i] = qRgba(palette[i].rgbRed, palette[i].rgbGreen, palette[i].rgbBlue,
                         i < alphas && alpha ? alpha[i] : 255);
    image.setColorTable(table);
    return image;
}

QImage FreeImageBitmap::trueColour(FIBITMAP* bitmap) {
    if (FreeImage_IsTransparent(bitmap))
        return copyRows(bitmap, FourBytes);
    // Without transparency the fourth byte means nothing and may hold
    // anything; Qt expects it opaque.
    QImage image = copyRows(bitmap, FourBytesOpaque);
    for (int y = 0; y < image.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x)
            row[x] |= 0xff000000u;
    }
    return image;
}

QImage FreeImageBitmap::converted(FIBITMAP* bitmap) {
    FreeImageBitmapPtr bits32(FreeImage_ConvertTo32Bits(bitmap));
    if (!bits32) {
        // Floating point and other sample types go through 8 bits a channel first.
        const FreeImageBitmapPtr standard(FreeImage_ConvertToStandardType(bitmap, TRUE));
        if (standard)
            bits32.reset(FreeImage_ConvertTo32Bits(standard.get()));
    }
    return bits32 ? trueColour(bits32.get()) : QImage();
}
