#include "SlideRenderer.h"
#include "PhotoSamples.h"
#include "TempDataHome.h"
#include "clsMessage.h"

#include <QDir>
#include <QPainter>
#include <sys/resource.h>

namespace {
// The most memory the test process has held so far, in megabytes.
long peakMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}
} // namespace

class SlideRendererTest : public TempDataHome {
protected:
    void SetUp() override {
        TempDataHome::SetUp();
        m_work = dataFile("work/");
        QDir().mkpath(m_work);
        m_message.Initialize("", "", m_work);
        m_slide = &m_message.Slides().Add();
    }
    void solidPicture(const QString& name, QColor color, QSize size = QSize(8, 8)) {
        QImage picture(size, QImage::Format_ARGB32);
        picture.fill(color);
        ASSERT_TRUE(picture.save(m_work + name));
    }
    clsDrawObject& addImage(const QString& file, QRect rect, int zorder) {
        clsDrawObject& object = m_slide->DrawObjects().Add();
        object.SetAllPproperties(DrawObjectProperties::forImage(file, rect, zorder));
        return object;
    }
    QString m_work;
    clsMessage m_message;
    clsSlide* m_slide = nullptr;
};

TEST_F(SlideRendererTest, ColoursPicturesAndStackingOrder) {
    m_slide->setColor(0x0000FF); // stored with red in the low byte: pure red
    solidPicture("blue.png", Qt::blue);
    solidPicture("green.png", Qt::green);
    addImage("green.png", QRect(40, 40, 40, 40), 2);
    addImage("blue.png", QRect(20, 20, 40, 40), 1);
    const SlideRenderer renderer(m_work, QSize(160, 120));
    const QImage picture = renderer.render(m_slide->DrawObjects());
    ASSERT_EQ(picture.size(), QSize(160, 120));
    EXPECT_EQ(picture.pixelColor(5, 5), QColor(Qt::red));
    EXPECT_EQ(picture.pixelColor(25, 25), QColor(Qt::blue));
    EXPECT_EQ(picture.pixelColor(50, 50), QColor(Qt::green)) << "the higher zorder is on top";
    EXPECT_EQ(picture.pixelColor(85, 85), QColor(Qt::red));
    EXPECT_TRUE(renderer.missingFiles().isEmpty());

    const QImage doubled = renderer.render(m_slide->DrawObjects(), QSize(320, 240));
    EXPECT_EQ(doubled.pixelColor(100, 100), QColor(Qt::green));
    EXPECT_EQ(doubled.pixelColor(45, 45), QColor(Qt::blue));
    EXPECT_EQ(doubled.pixelColor(170, 170), QColor(Qt::red));
}

TEST_F(SlideRendererTest, BackgroundPictureCoversTheSurfaceAndMissingFilesAreNamed) {
    solidPicture("back.png", Qt::yellow, QSize(3, 2));
    m_slide->DrawObjects().setBackType(1);
    m_slide->DrawObjects().setBackPicture("back.png");
    addImage("gone.png", QRect(0, 0, 10, 10), 1);
    const SlideRenderer renderer(m_work, QSize(176, 144));
    const QImage picture = renderer.render(m_slide->DrawObjects());
    EXPECT_EQ(picture.pixelColor(0, 0), QColor(Qt::yellow));
    EXPECT_EQ(picture.pixelColor(175, 143), QColor(Qt::yellow));
    EXPECT_EQ(renderer.missingFiles(), QStringList{"gone.png"});
}

TEST_F(SlideRendererTest, TextStaysInsideItsBoxAndFollowsItsAlignment) {
    m_slide->setColor(0xFFFFFF);
    DrawObjectProperties p =
        DrawObjectProperties::forText("WWWW WWWW WWWW WWWW WWWW WWWW", QRect(10, 10, 60, 20));
    p.fontName = "DejaVu Sans";
    p.fontColor = 0xFF0000; // blue
    p.bold = true;
    m_slide->DrawObjects().Add().SetAllPproperties(p);
    const QImage picture = SlideRenderer(m_work, QSize(160, 120)).render(m_slide->DrawObjects());
    int inside = 0, outside = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x) {
            if (picture.pixelColor(x, y) == QColor(Qt::white))
                continue;
            const bool inBox = x >= 10 && x < 70 && y >= 10 && y < 30;
            (inBox ? inside : outside)++;
        }
    EXPECT_GT(inside, 50) << "the text is drawn";
    EXPECT_EQ(outside, 0) << "wrapped text is clipped to its box";

    // Right-aligned short text lands at the right edge of its box.
    p.text = "I";
    p.fontAlign = 1;
    m_slide->DrawObjects().Clear();
    m_slide->DrawObjects().Add().SetAllPproperties(p);
    const QImage right = SlideRenderer(m_work, QSize(160, 120)).render(m_slide->DrawObjects());
    int leftmost = 160;
    for (int y = 10; y < 30; ++y)
        for (int x = 10; x < 70; ++x)
            if (right.pixelColor(x, y) != QColor(Qt::white))
                leftmost = std::min(leftmost, x);
    EXPECT_GT(leftmost, 55);
}

TEST_F(SlideRendererTest, TheSlideImageWinsOverItsObjectsWhenSaved) {
    QImage held(20, 10, QImage::Format_RGB32);
    held.fill(Qt::cyan);
    m_slide->setImage(held);
    const SlideRenderer renderer(m_work, QSize(160, 120));
    ASSERT_TRUE(renderer.renderToFile(*m_slide, m_work + "Slide_1.bmp"));
    const QImage back(m_work + "Slide_1.bmp");
    EXPECT_EQ(back.size(), QSize(20, 10));
    EXPECT_EQ(back.pixelColor(3, 3), QColor(Qt::cyan));
    QFile file(m_work + "Slide_1.bmp");
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.read(2), "BM");
}

// Slide files are written only where nothing is: never through a link left
// in the work folder, and never half.
TEST_F(SlideRendererTest, ASlideFileIsNeverWrittenThroughWhatIsInTheWay) {
    writeFile(dataFile("outside.bmp"), "keep me");
    ASSERT_TRUE(QFile::link(dataFile("outside.bmp"), m_work + "Slide_1.bmp"));
    const SlideRenderer renderer(m_work, QSize(160, 120));
    EXPECT_FALSE(renderer.renderToFile(*m_slide, m_work + "Slide_1.bmp"));
    EXPECT_EQ(readFile(dataFile("outside.bmp")), "keep me");
    EXPECT_TRUE(renderer.renderToFile(*m_slide, m_work + "Slide_2.bmp"));
    EXPECT_EQ(QImage(m_work + "Slide_2.bmp").size(), QSize(160, 120));
}

TEST_F(SlideRendererTest, PhonePhotosFillTheSurfaceAndTheirRectangles) {
    // 36 megapixels: more than Qt decodes whole without being asked to.
    ASSERT_EQ(PhotoSamples::gradientJpeg(m_work + "photo.jpg", QSize(7200, 5000)), QString());
    m_slide->setColor(0xFFFFFF);
    m_slide->DrawObjects().setBackType(clsDrawObjects::BackStill);
    m_slide->DrawObjects().setBackPicture("photo.jpg");
    // Squeezed into a strip near the bottom, where the background is mostly blue.
    addImage("photo.jpg", QRect(100, 90, 50, 20), 1);
    const SlideRenderer renderer(m_work, QSize(160, 120));
    const long peakBefore = peakMegabytes();
    const QImage picture = renderer.render(m_slide->DrawObjects());
    EXPECT_LT(peakMegabytes() - peakBefore, 64) << "decoded whole, the photo takes 144 MB";
    EXPECT_TRUE(renderer.missingFiles().isEmpty())
        << renderer.missingFiles().join(' ').toStdString();
    for (int y : {0, 30, 60, 89, 119})
        EXPECT_PRED2(PhotoSamples::near, picture.pixelColor(20, y),
                     PhotoSamples::gradientAt(y / 119.0))
            << "row " << y;
    EXPECT_PRED2(PhotoSamples::near, picture.pixelColor(159, 0), PhotoSamples::gradientAt(0));
    for (int y : {90, 100, 109})
        EXPECT_PRED2(PhotoSamples::near, picture.pixelColor(125, y),
                     PhotoSamples::gradientAt((y - 90) / 19.0))
            << "row " << y;
    EXPECT_PRED2(PhotoSamples::near, picture.pixelColor(125, 85),
                 PhotoSamples::gradientAt(85 / 119.0));
}
