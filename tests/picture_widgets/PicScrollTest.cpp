#include "AppError.h"
#include "ctlPicScroll.h"

#include <QApplication>
#include <QFile>
#include <QImageReader>
#include <QScreen>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace {
// Colours that change along both edges, so every part of the picture differs.
QImage picture(QSize size) {
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, qRgb(x * 255 / size.width(), y * 255 / size.height(), 90));
    return image;
}

QString scrollFailure(ctlPicScroll& view, int step, bool loop) {
    try {
        loop ? view.ScrollLoop(1, 0, step) : view.Scroll(1, 0, step);
    } catch (const AppError& error) {
        return error.description();
    }
    return "nothing thrown";
}

class PicScrollTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_view.resize(240, 180);
        m_view.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_view));
    }
    QScrollBar* h() const { return m_view.horizontalScrollBar(); }
    QScrollBar* v() const { return m_view.verticalScrollBar(); }
    QSize frame() const { return m_view.viewport()->size(); }
    QWidget* surface() const { return m_view.viewport(); }

    ctlPicScroll m_view;
};
} // namespace

TEST_F(PicScrollTest, ZoomStepsStopAtFiveAndAtThreeHundredAndTwentyFivePercent) {
    m_view.setPicture(picture(QSize(400, 300)));
    m_view.ResetZoom();
    EXPECT_EQ(m_view.ZoomPercent(), 100);
    EXPECT_EQ(m_view.shownRect().size(), QSize(400, 300));
    for (int i = 0; i < 10; ++i)
        m_view.ZoomOut();
    EXPECT_EQ(m_view.ZoomPercent(), 5);
    EXPECT_EQ(m_view.shownRect().size(), QSize(20, 15));
    m_view.ZoomOut();
    EXPECT_EQ(m_view.ZoomPercent(), 5);
    m_view.ResetZoom();
    for (int i = 0; i < 9; ++i)
        m_view.ZoomIn();
    EXPECT_EQ(m_view.ZoomPercent(), 325);
    EXPECT_EQ(m_view.shownRect().size(), QSize(1300, 975));
    EXPECT_EQ(h()->maximum(), 1300 - frame().width());
    m_view.ZoomIn();
    EXPECT_EQ(m_view.ZoomPercent(), 325);
    m_view.ZoomReal();
    EXPECT_EQ(m_view.ZoomPercent(), 100);
}

TEST_F(PicScrollTest, FittingKeepsTheRatioStretchingFillsTheFrame) {
    m_view.setPicture(picture(QSize(400, 300)));
    m_view.FitAndMaintainRatio();
    const QRect fitted = m_view.shownRect();
    EXPECT_TRUE(QRect(QPoint(0, 0), frame()).contains(fitted));
    EXPECT_TRUE(fitted.width() == frame().width() || fitted.height() == frame().height());
    EXPECT_LE(std::abs(fitted.width() * 3 - fitted.height() * 4), 4);
    EXPECT_EQ(h()->maximum(), 0);
    // Zooming in from a fitted picture goes one step up from what was shown.
    const int fit = m_view.ZoomPercent();
    m_view.ZoomIn();
    EXPECT_GT(m_view.ZoomPercent(), fit);
    EXPECT_LE(m_view.ZoomPercent(), fit + 25);
    m_view.Stretch();
    EXPECT_EQ(m_view.shownRect(), QRect(QPoint(0, 0), frame()));
    EXPECT_EQ(m_view.displayMode(), ctlPicScroll::ModeStretch);
}

TEST_F(PicScrollTest, GoLandsOnTheNinePlacesOfAPhoneKeypad) {
    m_view.setPicture(picture(QSize(1000, 800)));
    m_view.ResetZoom();
    const int right = 1000 - frame().width();
    const int bottom = 800 - frame().height();
    ASSERT_EQ(h()->maximum(), right);
    const QPoint expected[] = {{0, 0},          {right / 2, 0},          {right, 0},
                               {0, bottom / 2}, {right / 2, bottom / 2}, {right, bottom / 2},
                               {0, bottom},     {right / 2, bottom},     {right, bottom}};
    for (int position = 9; position >= 1; --position) {
        m_view.Go(position);
        EXPECT_EQ(QPoint(h()->value(), v()->value()), expected[position - 1]) << position;
        EXPECT_EQ(m_view.shownRect().topLeft(), -expected[position - 1]) << position;
    }
    m_view.Go(10);
    EXPECT_EQ(QPoint(h()->value(), v()->value()), expected[0]);
}

TEST_F(PicScrollTest, ScrollingNeedsAPositiveStepAndStopsOrComesRoundAtTheEnds) {
    m_view.setPicture(picture(QSize(1000, 800)));
    m_view.ResetZoom();
    for (bool loop : {false, true})
        for (int step : {0, -1})
            EXPECT_EQ(scrollFailure(m_view, step, loop), "PixelsStep must be > 0");
    m_view.Scroll(3, 2, 10);
    EXPECT_EQ(QPoint(h()->value(), v()->value()), QPoint(30, 20));
    m_view.Scroll(-1000, 1000, 10);
    EXPECT_EQ(QPoint(h()->value(), v()->value()), QPoint(0, v()->maximum()));
    m_view.ScrollLoop(-1, 1, 1);
    EXPECT_EQ(QPoint(h()->value(), v()->value()), QPoint(h()->maximum(), 0));
    m_view.ScrollLoop(0, -5, 2);
    EXPECT_EQ(v()->value(), v()->maximum() - 9);
}

TEST_F(PicScrollTest, DraggingWithTheMouseMovesThePictureUnlessSwitchedOff) {
    m_view.setPicture(picture(QSize(1000, 800)));
    m_view.ResetZoom();
    m_view.Go(5);
    const QPoint start(h()->value(), v()->value());
    QTest::mouseMove(surface(), QPoint(100, 100));
    EXPECT_EQ(surface()->cursor().shape(), Qt::OpenHandCursor);
    QTest::mousePress(surface(), Qt::LeftButton, Qt::NoModifier, QPoint(100, 100));
    EXPECT_EQ(surface()->cursor().shape(), Qt::ClosedHandCursor);
    QTest::mouseMove(surface(), QPoint(60, 70));
    QTest::mouseRelease(surface(), Qt::LeftButton, Qt::NoModifier, QPoint(60, 70));
    EXPECT_EQ(QPoint(h()->value(), v()->value()), start + QPoint(40, 30));

    m_view.setProperty("MouseScrolling", false);
    EXPECT_FALSE(m_view.MouseScrolling());
    QTest::mousePress(surface(), Qt::LeftButton, Qt::NoModifier, QPoint(100, 100));
    QTest::mouseMove(surface(), QPoint(20, 20));
    QTest::mouseRelease(surface(), Qt::LeftButton, Qt::NoModifier, QPoint(20, 20));
    EXPECT_EQ(QPoint(h()->value(), v()->value()), start + QPoint(40, 30));
}

TEST_F(PicScrollTest, CtrlWheelAndPlusMinusZoomWhileArrowsScroll) {
    m_view.setPicture(picture(QSize(1000, 800)));
    m_view.ResetZoom();
    QWheelEvent up(QPointF(50, 50), m_view.mapToGlobal(QPointF(50, 50)), QPoint(), QPoint(0, 120),
                   Qt::NoButton, Qt::ControlModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(surface(), &up);
    EXPECT_EQ(m_view.ZoomPercent(), 125);
    QTest::keyClick(&m_view, Qt::Key_Minus);
    QTest::keyClick(&m_view, Qt::Key_Minus);
    EXPECT_EQ(m_view.ZoomPercent(), 90);
    QTest::keyClick(&m_view, Qt::Key_Plus);
    EXPECT_EQ(m_view.ZoomPercent(), 100);
    m_view.Go(1);
    QTest::keyClick(&m_view, Qt::Key_Right);
    EXPECT_GT(h()->value(), 0);
    EXPECT_EQ(m_view.focusPolicy(), Qt::StrongFocus);
}

TEST_F(PicScrollTest, TurnsAndMirrorsTheShownPictureButKeepsTheOneGiven) {
    const QImage original = picture(QSize(3, 2));
    m_view.setPicture(original);
    m_view.Rotate(true);
    EXPECT_EQ(QSize(m_view.PictureWidth(), m_view.PictureHeight()), QSize(2, 3));
    EXPECT_EQ(m_view.GetPicture().pixel(1, 0), original.pixel(0, 0));
    m_view.Flip(true);
    EXPECT_EQ(m_view.GetPicture().pixel(0, 0), original.pixel(0, 0));
    EXPECT_EQ(m_view.Picture(), original);
    m_view.Clear();
    EXPECT_TRUE(m_view.GetPicture().isNull());
    EXPECT_EQ(m_view.PictureWidth(), 0);
}

TEST_F(PicScrollTest, SavesABitmapOrWithTheProgramsOwnEncoderAGif) {
    QTemporaryDir dir;
    m_view.setPicture(picture(QSize(30, 20)));
    m_view.Rotate(false);
    for (const char* name : {"shot.bmp", "shot.gif", "SHOT2.GIF", "shot.png"}) {
        SCOPED_TRACE(name);
        const QString path = dir.filePath(name);
        m_view.SaveTo(path);
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const bool gif = QString(name).endsWith("gif", Qt::CaseInsensitive);
        // A name that does not end in .gif gets a bitmap, whatever it says.
        EXPECT_EQ(file.read(gif ? 6 : 2), gif ? QByteArray("GIF89a") : QByteArray("BM"));
        QImageReader reader(path);
        EXPECT_EQ(reader.format(), gif ? "gif" : "bmp");
        const QImage back = reader.read();
        EXPECT_EQ(back.size(), QSize(20, 30));
        if (!gif) {
            EXPECT_EQ(back.pixel(0, 29), m_view.GetPicture().pixel(0, 29));
        }
    }
}

TEST_F(PicScrollTest, TheCropFrameIsDraggedByItsCornerAndBodyAndMovedByKeys) {
    m_view.setPicture(picture(QSize(400, 400)));
    m_view.setCropAspect(QSize(160, 120));
    m_view.FitAndMaintainRatio();
    m_view.setCropping(true);
    const QRect shown = m_view.shownRect();
    const double scale = shown.width() / 400.0;
    ASSERT_EQ(m_view.cropRect(), QRect(0, 50, 400, 300));
    // The bottom right corner, dragged half way towards the top left.
    const QPoint corner = shown.topLeft() + QPoint(399, 349) * scale;
    QTest::mouseMove(surface(), corner);
    EXPECT_EQ(surface()->cursor().shape(), Qt::SizeFDiagCursor);
    QTest::mousePress(surface(), Qt::LeftButton, Qt::NoModifier, corner);
    QTest::mouseMove(surface(), shown.topLeft() + QPoint(200, 200) * scale);
    QTest::mouseRelease(surface(), Qt::LeftButton, Qt::NoModifier,
                        shown.topLeft() + QPoint(200, 200) * scale);
    const QRect dragged = m_view.cropRect();
    EXPECT_EQ(dragged.topLeft(), QPoint(0, 50));
    EXPECT_NEAR(dragged.width(), 200, 3);
    EXPECT_LE(std::abs(dragged.width() * 3 - dragged.height() * 4), 4);
    // The body, dragged to the right and down.
    const QPoint body = shown.topLeft() + QPoint(100, 120) * scale;
    QTest::mousePress(surface(), Qt::LeftButton, Qt::NoModifier, body);
    QTest::mouseMove(surface(), body + QPoint(100, 60) * scale);
    QTest::mouseRelease(surface(), Qt::LeftButton, Qt::NoModifier, body + QPoint(100, 60) * scale);
    EXPECT_NEAR(m_view.cropRect().x(), 100, 3);
    EXPECT_NEAR(m_view.cropRect().y(), 110, 3);
    EXPECT_EQ(m_view.cropRect().size(), dragged.size());
    EXPECT_EQ(m_view.croppedPicture().size(), dragged.size());
    EXPECT_EQ(m_view.croppedPicture().pixel(0, 0),
              m_view.GetPicture().pixel(m_view.cropRect().topLeft()));
    // Keys: four steps right, then two smaller.
    const QRect before = m_view.cropRect();
    QTest::keyClick(&m_view, Qt::Key_Right);
    EXPECT_EQ(m_view.cropRect(), before.translated(4, 0));
    QTest::keyClick(&m_view, Qt::Key_Left, Qt::ShiftModifier);
    EXPECT_EQ(m_view.cropRect().width(), before.width() - 4);
    EXPECT_EQ(h()->value(), 0) << "the arrows move the frame, not the picture";
    // Turning the picture frames the turned picture afresh.
    m_view.Rotate(true);
    EXPECT_EQ(m_view.cropRect(), QRect(0, 50, 400, 300));
}
