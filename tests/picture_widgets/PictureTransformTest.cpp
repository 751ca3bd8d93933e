#include "PictureTransform.h"

#include <QImage>
#include <gtest/gtest.h>
#include <random>

namespace {
// Six different colours in three columns and two rows:
//   a b c
//   d e f
const QRgb a = 0xff110000, b = 0xff002200, c = 0xff000033, d = 0xff444400, e = 0xff005555,
           f = 0xff660066;

QImage threeByTwo(QImage::Format format) {
    QImage picture(3, 2, QImage::Format_ARGB32);
    const QRgb colours[] = {a, b, c, d, e, f};
    for (int i = 0; i < 6; ++i)
        picture.setPixel(i % 3, i / 3, colours[i]);
    return picture.convertToFormat(format);
}

void expectRows(const QImage& picture, const std::vector<std::vector<QRgb>>& rows) {
    ASSERT_EQ(picture.height(), int(rows.size()));
    for (int y = 0; y < picture.height(); ++y) {
        ASSERT_EQ(picture.width(), int(rows[y].size()));
        for (int x = 0; x < picture.width(); ++x)
            EXPECT_EQ(picture.pixel(x, y), rows[y][x]) << "at " << x << "," << y;
    }
}

// Noise in every bit, sized so that no row fills whole bytes or words.
QImage noise(QImage::Format format) {
    std::mt19937 random(7);
    QImage picture(13, 7, format);
    if (format == QImage::Format_Indexed8) {
        QList<QRgb> table;
        for (int i = 0; i < 40; ++i)
            table << qRgb(i * 6, 255 - i * 5, i * 3);
        picture.setColorTable(table);
    } else if (format == QImage::Format_Mono) {
        picture.setColorTable({qRgb(10, 20, 30), qRgb(240, 230, 220)});
    }
    for (int y = 0; y < picture.height(); ++y) {
        uchar* row = picture.scanLine(y);
        for (qsizetype i = 0; i < picture.bytesPerLine(); ++i)
            row[i] = uchar(format == QImage::Format_Indexed8 ? random() % 40 : random());
    }
    // Bits past the last pixel of a row are no part of the picture.
    return picture.copy();
}

bool samePixels(const QImage& one, const QImage& other) {
    if (one.size() != other.size() || one.format() != other.format())
        return false;
    for (int y = 0; y < one.height(); ++y)
        for (int x = 0; x < one.width(); ++x)
            if (one.pixel(x, y) != other.pixel(x, y))
                return false;
    return true;
}
} // namespace

TEST(PictureTransform, TurnsClockwiseAsTheTopRowBecomesTheRightColumn) {
    for (QImage::Format format : {QImage::Format_ARGB32, QImage::Format_RGB888}) {
        const QImage turned = PictureTransform::rotated(threeByTwo(format), true);
        EXPECT_EQ(turned.format(), format);
        expectRows(turned, {{d, a}, {e, b}, {f, c}});
    }
}

TEST(PictureTransform, TurnsAnticlockwiseAsTheTopRowBecomesTheLeftColumn) {
    for (QImage::Format format : {QImage::Format_ARGB32, QImage::Format_RGB888}) {
        const QImage turned = PictureTransform::rotated(threeByTwo(format), false);
        expectRows(turned, {{c, f}, {b, e}, {a, d}});
    }
}

TEST(PictureTransform, FourTurnsGiveThePictureBackInItsOwnFormat) {
    for (QImage::Format format : {QImage::Format_ARGB32, QImage::Format_Indexed8,
                                  QImage::Format_Mono, QImage::Format_RGB16}) {
        const QImage original = noise(format);
        for (bool clockwise : {true, false}) {
            QImage picture = original;
            for (int turn = 0; turn < 4; ++turn) {
                picture = PictureTransform::rotated(picture, clockwise);
                ASSERT_EQ(picture.format(), format);
                EXPECT_EQ(picture.colorTable(), original.colorTable());
                EXPECT_EQ(picture.size(),
                          turn % 2 == 0 ? original.size().transposed() : original.size());
            }
            EXPECT_TRUE(samePixels(picture, original)) << "format " << format;
        }
    }
}

TEST(PictureTransform, FlipsLeftRightOrTopBottomAndBackAgain) {
    const QImage original = threeByTwo(QImage::Format_ARGB32);
    expectRows(PictureTransform::flipped(original, true), {{c, b, a}, {f, e, d}});
    expectRows(PictureTransform::flipped(original, false), {{d, e, f}, {a, b, c}});
    for (QImage::Format format : {QImage::Format_Indexed8, QImage::Format_Mono}) {
        const QImage picture = noise(format);
        for (bool horizontal : {true, false}) {
            const QImage twice = PictureTransform::flipped(
                PictureTransform::flipped(picture, horizontal), horizontal);
            EXPECT_TRUE(samePixels(twice, picture));
        }
    }
}
