#include "CropFrame.h"

#include <gtest/gtest.h>

namespace {
CropFrame frame(QSize picture, QSize aspect) {
    CropFrame crop;
    crop.reset(picture, aspect);
    return crop;
}

bool inside(const CropFrame& crop) {
    return QRect(QPoint(0, 0), crop.picture()).contains(crop.rect());
}

// Within the pixel that rounding the height may cost.
bool keepsRatio(QRect rect, QSize aspect) {
    return std::abs(rect.height() * aspect.width() - rect.width() * aspect.height()) <=
           aspect.width();
}
} // namespace

TEST(CropFrame, StartsAsTheLargestFrameCentredInThePicture) {
    EXPECT_EQ(frame(QSize(400, 400), QSize(160, 120)).rect(), QRect(0, 50, 400, 300));
    EXPECT_EQ(frame(QSize(1000, 100), QSize(160, 120)).rect(), QRect(433, 0, 133, 100));
    // The slide's own size, with proportions that do not reduce to small numbers.
    const CropFrame odd = frame(QSize(333, 500), QSize(176, 144));
    EXPECT_EQ(odd.rect().width(), 333);
    EXPECT_TRUE(keepsRatio(odd.rect(), QSize(176, 144)));
    EXPECT_TRUE(inside(odd));
}

TEST(CropFrame, MovesOnlyAsFarAsThePictureGoes) {
    CropFrame crop = frame(QSize(400, 400), QSize(4, 3));
    crop.moveBy(QPoint(0, -80));
    EXPECT_EQ(crop.rect(), QRect(0, 0, 400, 300));
    crop.moveBy(QPoint(30, 500));
    EXPECT_EQ(crop.rect(), QRect(0, 100, 400, 300));
}

TEST(CropFrame, ACornerDraggedOutwardsStopsAtThePictureWithTheRatioKept) {
    CropFrame crop = frame(QSize(400, 400), QSize(4, 3));
    crop.dragCorner(CropFrame::BottomRight, QPoint(200, 150)); // the frame starts at 0,50
    EXPECT_EQ(crop.rect().topLeft(), QPoint(0, 50));
    EXPECT_EQ(crop.rect().size(), QSize(200, 150));
    crop.dragCorner(CropFrame::BottomRight, QPoint(5000, 5000));
    EXPECT_TRUE(inside(crop));
    EXPECT_EQ(crop.rect(), QRect(0, 50, 400, 300));
}

TEST(CropFrame, TheOppositeCornerStaysWhereItWas) {
    CropFrame crop = frame(QSize(400, 400), QSize(4, 3));
    crop.dragCorner(CropFrame::TopLeft, QPoint(100, 0));
    // Asked for 300 wide or 350 high: the larger wins, as far as the picture allows.
    EXPECT_EQ(crop.rect(), QRect(0, 50, 400, 300));
    crop.dragCorner(CropFrame::TopRight, QPoint(200, 200));
    EXPECT_EQ(crop.rect(), QRect(0, 200, 200, 150));
    crop.dragCorner(CropFrame::BottomLeft, QPoint(150, 230));
    EXPECT_EQ(crop.rect().topRight(), QPoint(199, 200));
    EXPECT_EQ(crop.rect().size(), QSize(50, 38));
}

TEST(CropFrame, ACornerDraggedPastTheOtherNeverTurnsTheFrameInsideOut) {
    CropFrame crop = frame(QSize(400, 400), QSize(4, 3));
    crop.dragCorner(CropFrame::BottomRight, QPoint(-50, -50));
    EXPECT_EQ(crop.rect().topLeft(), QPoint(0, 50));
    EXPECT_EQ(crop.rect().width(), CropFrame::MinimumWidth);
    EXPECT_TRUE(keepsRatio(crop.rect(), QSize(4, 3)));
}

TEST(CropFrame, ResizingFromTheKeyboardGrowsAndShrinksWithinThePicture) {
    CropFrame crop = frame(QSize(400, 400), QSize(4, 3));
    crop.resizeBy(-100);
    EXPECT_EQ(crop.rect(), QRect(0, 50, 300, 225));
    crop.moveBy(QPoint(100, 175));
    crop.resizeBy(40);
    // No room below: it grows only as far as the bottom.
    EXPECT_TRUE(inside(crop));
    EXPECT_EQ(crop.rect(), QRect(100, 175, 300, 225));
}

TEST(CropFrame, APictureNarrowerThanTheSmallestFrameIsFramedWhole) {
    CropFrame crop = frame(QSize(3, 40), QSize(4, 3));
    EXPECT_TRUE(inside(crop));
    crop.dragCorner(CropFrame::BottomRight, QPoint(0, 0));
    EXPECT_TRUE(inside(crop));
    EXPECT_FALSE(frame(QSize(), QSize(4, 3)).isValid());
}
