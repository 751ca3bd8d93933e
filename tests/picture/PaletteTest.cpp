#include "AppError.h"
#include "ColourLookup.h"
#include "PictureTestSupport.h"
#include "cDIBSection.h"
#include "cPalette.h"

#include <QPainter>
#include <QSet>
#include <gtest/gtest.h>
#include <random>

namespace {
cDIBSection dibOf(int width, int height, const QList<QRgb>& pixels) {
    QImage picture(width, height, QImage::Format_RGB32);
    for (int i = 0; i < pixels.size(); ++i)
        picture.setPixel(i % width, i / width, pixels[i]);
    cDIBSection dib;
    EXPECT_TRUE(dib.LoadPictureBlt(picture));
    return dib;
}

void fill(cPalette& palette, const QList<QRgb>& colours) {
    palette.Clear();
    for (QRgb colour : colours)
        palette.Add(qRed(colour), qGreen(colour), qBlue(colour));
}

// The palette indices the pixels get, left to right and top to bottom.
QList<int> mapped(int width, int height, const QList<QRgb>& pixels, const QList<QRgb>& colours,
                  bool diffusion) {
    cDIBSection dib = dibOf(width, height, pixels);
    cPalette palette;
    fill(palette, colours);
    const QImage indexed = palette.ApplyPalette(dib, diffusion);
    QList<int> result;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            result.append(indexed.pixelIndex(x, y));
            // The bitmap itself now holds exactly the chosen entries.
            EXPECT_EQ(dib.image().pixel(x, y), colours[result.last()] | 0xFF000000);
        }
    return result;
}

const QRgb Black = qRgb(0, 0, 0), White = qRgb(255, 255, 255), Blue = qRgb(0, 0, 255);
} // namespace

TEST(PaletteTest, ClosestIndexUsesSquaredDistanceAndLowestIndexOnTies) {
    cPalette palette;
    EXPECT_EQ(palette.ClosestIndex(1, 2, 3), -1);
    // (10,10,10) is 30 away from both in sum of differences, but squared it is
    // nearer to the second entry.
    fill(palette, {qRgb(40, 10, 10), qRgb(20, 20, 20), qRgb(20, 20, 20), qRgb(0, 0, 0)});
    EXPECT_EQ(palette.ClosestIndex(10, 10, 10), 1);
    EXPECT_EQ(palette.ClosestIndex(20, 20, 20), 1);
    fill(palette, {qRgb(0, 0, 0), qRgb(10, 0, 0), qRgb(0, 10, 0)});
    EXPECT_EQ(palette.ClosestIndex(5, 5, 0), 0) << "all three are 50 away; the first wins";
    EXPECT_EQ(palette.ClosestIndex(255, 255, 255), 1);
}

TEST(PaletteTest, PaletteHoldsAtMost256Entries) {
    cPalette palette;
    for (int i = 0; i < 256; ++i)
        EXPECT_TRUE(palette.Add(i, i, i));
    EXPECT_FALSE(palette.Add(1, 2, 3));
    EXPECT_EQ(palette.Count(), 256);
    EXPECT_EQ(palette.Blue(200), 200);
}

TEST(PaletteTest, FastLookupAgreesWithClosestIndex) {
    std::mt19937 random(11);
    std::uniform_int_distribution<int> byte(0, 255);
    for (int size : {1, 2, 7, 64, 256}) {
        cPalette palette;
        for (int i = 0; i < size; ++i)
            palette.Add(byte(random) & 0xF0, byte(random), byte(random) | 0x0F);
        // Duplicates and near-duplicates make ties.
        palette.Add(palette.Red(0), palette.Green(0), palette.Blue(0));
        ColourLookup lookup(palette);
        for (int n = 0; n < 20000; ++n) {
            const int r = byte(random), g = byte(random), b = byte(random);
            ASSERT_EQ(lookup.closestIndex(r, g, b), palette.ClosestIndex(r, g, b))
                << size << " entries, colour " << r << "," << g << "," << b;
        }
    }
}

TEST(PaletteTest, OptimalPaletteKeepsEveryColourOfAFewColourPicture) {
    std::mt19937 random(3);
    QList<QRgb> chosen;
    for (int i = 0; i < 250; ++i)
        chosen.append(random() & 0xFFFFFF);
    QList<QRgb> pixels;
    QSet<QRgb> colours;
    for (int i = 0; i < 40 * 30; ++i) {
        const QRgb colour = chosen[(i * 7 + i / 40) % chosen.size()] | 0xFF000000;
        pixels.append(colour);
        colours.insert(colour);
    }
    ASSERT_LE(colours.size(), 256);
    cDIBSection dib = dibOf(40, 30, pixels);
    cPalette palette;
    palette.CreateOptimal(dib);
    QSet<QRgb> entries;
    for (int i = 0; i < palette.Count(); ++i)
        entries.insert(qRgb(palette.Red(i), palette.Green(i), palette.Blue(i)));
    EXPECT_EQ(entries, colours);
    EXPECT_EQ(palette.Count(), colours.size());
    // Two colours fewer than that must merge some; one merge joins at most
    // eight cubes.
    const int limit = int(colours.size()) - 2;
    palette.CreateOptimal(dib, limit);
    EXPECT_LE(palette.Count(), limit);
    EXPECT_GE(palette.Count(), limit - 7);
}

TEST(PaletteTest, OptimalPaletteOfAPhotographStaysWithinTheLimitAndNearTheColours) {
    cDIBSection dib;
    ASSERT_TRUE(dib.LoadPictureBlt(plasmaPicture()));
    for (int limit : {256, 16, 2, 1}) {
        cPalette palette;
        palette.CreateOptimal(dib, limit);
        EXPECT_GE(palette.Count(), 1);
        EXPECT_LE(palette.Count(), limit);
    }
    cPalette palette;
    palette.CreateOptimal(dib);
    EXPECT_GT(palette.Count(), 200) << "a photograph has far more than 256 colours";
    // Without diffusion every pixel lands on its nearest entry; a good palette
    // of 256 colours keeps that within about 5 levels a channel on average
    // (ImageMagick's own palette gets 5.1 on this picture).
    cDIBSection mappedDib;
    ASSERT_TRUE(mappedDib.LoadPictureBlt(plasmaPicture()));
    palette.ApplyPalette(mappedDib, false);
    double error = 0;
    for (int y = 0; y < dib.Height(); ++y)
        for (int x = 0; x < dib.Width() * 3; ++x)
            error += std::abs(dib.ScanLine(y)[x] - mappedDib.ScanLine(y)[x]);
    EXPECT_LT(error / (dib.Width() * dib.Height() * 3), 6.0);
}

TEST(PaletteTest, OptimalPaletteOfNoEntriesCannotBeReduced) {
    cDIBSection dib = dibOf(2, 1, {Black, White});
    cPalette palette;
    try {
        palette.CreateOptimal(dib, 0);
        FAIL() << "expected an error";
    } catch (const AppError& error) {
        EXPECT_EQ(error.description(), "Error in reducing nodes");
    }
}

TEST(PaletteTest, StandardPaletteHas256ColoursWithBlackAndWhite) {
    cPalette palette;
    palette.CreateStandard();
    EXPECT_EQ(palette.Count(), 256);
    EXPECT_EQ(palette.ClosestIndex(0, 0, 0), 0);
    const int white = palette.ClosestIndex(255, 255, 255);
    EXPECT_EQ(qRgb(palette.Red(white), palette.Green(white), palette.Blue(white)), White);
}

// One pixel carrying the error and its neighbours placed so that the share
// they receive decides which entry they map to.
TEST(PaletteTest, DiffusionPassesSevenSixteenthsRightAndFourSixteenthsDown) {
    const QRgb g100 = qRgb(100, 100, 100);
    // Black and white meet at 127.5: 100's error of 100 gives 43 (not 44) to the right.
    EXPECT_EQ(mapped(2, 1, {g100, qRgb(84, 84, 84)}, {Black, White}, true), QList<int>({0, 0}));
    EXPECT_EQ(mapped(2, 1, {g100, qRgb(85, 85, 85)}, {Black, White}, true), QList<int>({0, 1}));
    EXPECT_EQ(mapped(2, 1, {g100, qRgb(85, 85, 85)}, {Black, White}, false), QList<int>({0, 0}));
    // ... and 25 to the pixel below (102 + 25 stays black, 103 + 25 turns white);
    // the diagonals below get nothing, so 127 there stays black.
    const QRgb g102 = qRgb(102, 102, 102), g103 = qRgb(103, 103, 103), g127 = qRgb(127, 127, 127);
    EXPECT_EQ(mapped(2, 2, {g100, White, g102, White}, {Black, White}, true),
              QList<int>({0, 1, 0, 1}));
    EXPECT_EQ(mapped(2, 2, {g100, White, g103, White}, {Black, White}, true),
              QList<int>({0, 1, 1, 1}));
    EXPECT_EQ(mapped(2, 2, {Black, g100, g127, White}, {Black, White}, true),
              QList<int>({0, 0, 0, 1}));
    EXPECT_EQ(mapped(2, 2, {g100, White, White, g127}, {Black, White}, true),
              QList<int>({0, 1, 1, 0}));
}

TEST(PaletteTest, DiffusionTruncatesTowardZeroClampsAndDropsSmallErrors) {
    const QList<QRgb> blackBlue{Black, Blue};
    const QRgb blue127 = qRgb(0, 0, 127);
    // An error of 4 gives 1 to the right, which tips 127 over to blue...
    EXPECT_EQ(mapped(2, 1, {qRgb(0, 0, 4), blue127}, blackBlue, true), QList<int>({0, 1}));
    // ...an error of 3 in total is dropped.
    EXPECT_EQ(mapped(2, 1, {qRgb(0, 0, 3), blue127}, blackBlue, true), QList<int>({0, 0}));
    EXPECT_EQ(mapped(2, 1, {qRgb(1, 1, 1), blue127}, blackBlue, true), QList<int>({0, 0}));
    // -5 * 7 / 16 is -2 toward zero (flooring would give -3 and black).
    EXPECT_EQ(mapped(2, 1, {qRgb(0, 0, 250), qRgb(0, 0, 130)}, blackBlue, true),
              QList<int>({1, 1}));
    EXPECT_EQ(mapped(2, 1, {qRgb(0, 0, 250), qRgb(0, 0, 129)}, blackBlue, true),
              QList<int>({1, 0}));
    // 250 + 43 is clamped to 255, not wrapped round to 37.
    EXPECT_EQ(mapped(2, 1, {qRgb(100, 100, 100), qRgb(250, 250, 250)}, {Black, White}, true),
              QList<int>({0, 1}));
}

TEST(PaletteTest, DibSectionHoldsPaddedBlueGreenRedRows) {
    cDIBSection dib;
    EXPECT_FALSE(dib.Create(0, 10));
    EXPECT_FALSE(dib.Create(20000, 10001)) << "beyond 200 megapixels";
    EXPECT_TRUE(dib.isNull());
    ASSERT_TRUE(dib.Create(5, 3));
    EXPECT_EQ(dib.BytesPerScanLine(), 16) << "15 bytes of pixels padded to 16";
    ASSERT_NE(dib.DIBSectionBitsPtr(), nullptr);
    QImage picture(5, 3, QImage::Format_ARGB32);
    picture.fill(qRgba(0, 0, 0, 0));
    picture.setPixel(4, 2, qRgb(10, 20, 30));
    ASSERT_TRUE(dib.LoadPictureBlt(picture));
    const uchar* last = dib.ScanLine(2) + 12;
    EXPECT_EQ(QByteArray(reinterpret_cast<const char*>(last), 3), QByteArray("\x1E\x14\x0A"));
    EXPECT_EQ(dib.image().pixel(0, 0), qRgb(255, 255, 255)) << "transparency over white";
    QImage target(7, 4, QImage::Format_RGB32);
    target.fill(Qt::black);
    QPainter painter(&target);
    dib.PaintPicture(painter, 2, 1);
    painter.end();
    EXPECT_EQ(target.pixel(6, 3), qRgb(10, 20, 30));
    EXPECT_EQ(target.pixel(2, 1), qRgb(255, 255, 255));
    EXPECT_EQ(target.pixel(1, 1), qRgb(0, 0, 0));
    dib.ClearUp();
    EXPECT_EQ(dib.DIBSectionBitsPtr(), nullptr);
}
