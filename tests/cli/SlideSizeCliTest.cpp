#include "ProgramRun.h"
#include "QtPrinters.h"
#include "ScriptedCliTest.h"

#include <QColor>
#include <QImage>
#include <sys/resource.h>

// Slides drawn from a script at the size their message was made at, with
// sizes checked before any pixel is made, and pictures from other programs
// placed on them whatever their format.
class SlideSizeCliTest : public ScriptedCliTest {
protected:
    void make(const QString& program, const QStringList& arguments) const {
        const ProgramRun done = run(program, arguments);
        ASSERT_EQ(done.code, 0) << program.toStdString() << ": " << done.err.toStdString();
    }

    // The most memory any program this test ran has taken, in kilobytes.
    static long largestChildKilobytes() {
        rusage usage{};
        getrusage(RUSAGE_CHILDREN, &usage);
        return usage.ru_maxrss;
    }
};

TEST_F(SlideSizeCliTest, AMessageRendersAtTheSizeItWasMadeAtWhateverTheSettingsSay) {
    make(cliProgram(), {"settings", "set", "preferences", "PhoneImageSize", "160,120,0"});
    make("convert", {"-size", "20x20", "xc:red", "corner.png"});
    // A red square in the corner that a 160 x 120 slide would cut off.
    make(cliProgram(), {"new", "big.mms", "--size", "176x144", "--slide", "--color", "FFFFFF",
                        "--image", "corner.png", "156,124,20,20"});

    const ProgramRun rendered = cli({"render", "big.mms", "1", "slide.png"});
    ASSERT_EQ(rendered.code, 0) << rendered.err.toStdString();
    const QImage slide(path("slide.png"));
    ASSERT_EQ(slide.size(), QSize(176, 144));
    EXPECT_EQ(slide.pixelColor(175, 143), QColor(Qt::red));
    EXPECT_EQ(slide.pixelColor(155, 123), QColor(Qt::white));

    // Twice as large, the square is where it was, twice as large.
    ASSERT_EQ(cli({"render", "big.mms", "1", "double.png", "--size", "352x288"}).code, 0);
    const QImage twice(path("double.png"));
    ASSERT_EQ(twice.size(), QSize(352, 288));
    EXPECT_EQ(twice.pixelColor(314, 250), QColor(Qt::red));
    EXPECT_EQ(twice.pixelColor(308, 244), QColor(Qt::white));
}

TEST_F(SlideSizeCliTest, SizesBeyondThePictureLimitAreRefusedBeforeAnyPixelIsMade) {
    make(cliProgram(), {"new", "m.mms", "--slide", "--color", "00FF00"});
    const QString tooLarge = "--size: The picture has 20000 x 20000 pixels; pictures of more than "
                             "200 megapixels are refused.";
    const ProgramRun render = cli({"render", "m.mms", "1", "huge.png", "--size", "20000x20000"});
    EXPECT_EQ(render.code, 64);
    EXPECT_EQ(render.err.trimmed(), "vellumo-cli: render: " + tooLarge);
    const ProgramRun made = cli({"new", "huge.mms", "--size", "20000x20000", "--slide"});
    EXPECT_EQ(made.code, 1);
    EXPECT_EQ(made.err.trimmed(), "vellumo-cli: new: " + tooLarge);
    // A size in the settings beyond the limit gives way to the phone's.
    make(cliProgram(), {"settings", "set", "preferences", "MmsImageSize", "20000x20000"});
    make(cliProgram(), {"new", "phone.mms", "--slide", "--color", "0000FF"});
    make(cliProgram(), {"render", "phone.mms", "1", "phone.png"});
    EXPECT_EQ(QImage(path("phone.png")).size(), QSize(160, 120));
    // 1.6 GB of pixels were once painted white before the size was refused.
    EXPECT_LT(largestChildKilobytes(), 1024 * 1024);
    EXPECT_FALSE(QFile::exists(path("huge.png")));
    EXPECT_FALSE(QFile::exists(path("huge.mms")));

    EXPECT_EQ(cli({"render", "m.mms", "1", "x.png", "--size", "0x5"}).err.trimmed(),
              "vellumo-cli: render: --size: 0x5 is not a size as WIDTHxHEIGHT");
    EXPECT_EQ(cli({"new", "x.mms", "--size", "wide", "--slide"}).err.trimmed(),
              "vellumo-cli: new: --size: wide is not a size as WIDTHxHEIGHT");
    // Within the limit, however odd, a size is drawn.
    const ProgramRun tall = cli({"render", "m.mms", "1", "tall.png", "--size", "2x30000"});
    ASSERT_EQ(tall.code, 0) << tall.err.toStdString();
    EXPECT_EQ(QImage(path("tall.png")).pixelColor(1, 29999), QColor(Qt::green));
}

TEST_F(SlideSizeCliTest, PicturesOfOtherProgramsGoOnSlidesByWhatTheyHoldNotTheirNames) {
    // Photoshop, Targa and PCX, one named as another's.
    make("convert", {"-size", "32x24", "xc:blue", "-depth", "8", "psd:back.dat"});
    make("convert", {"-size", "10x10", "xc:red", "-orient", "TopLeft", "mark.tga"});
    make("convert", {"-size", "10x10", "xc:yellow", "pcx:mark.png"});
    const ProgramRun made =
        cli({"new", "m.mms", "--size", "160x120", "--slide", "--background", "back.dat", "--image",
             "mark.tga", "0,0,10,10", "--image", "mark.png", "150,110,10,10"});
    ASSERT_EQ(made.code, 0) << made.err.toStdString();
    ASSERT_EQ(cli({"render", "m.mms", "1", "slide.png"}).code, 0);
    const QImage slide(path("slide.png"));
    ASSERT_EQ(slide.size(), QSize(160, 120));
    EXPECT_EQ(slide.pixelColor(80, 60), QColor(Qt::blue));
    EXPECT_EQ(slide.pixelColor(5, 5), QColor(Qt::red));
    EXPECT_EQ(slide.pixelColor(155, 115), QColor(Qt::yellow));

    // A header claiming more than the limit is refused with the file's name.
    QFile huge(path("huge.tga"));
    ASSERT_TRUE(huge.open(QIODevice::WriteOnly));
    huge.write(QByteArray::fromHex("000002000000000000000000"
                                   "60ea60ea1800") +
               QByteArray(64, '\0'));
    huge.close();
    const ProgramRun refused = cli({"new", "x.mms", "--slide", "--background", "huge.tga"});
    EXPECT_EQ(refused.code, 1);
    EXPECT_TRUE(refused.err.contains("--background refused: The picture huge.tga cannot be used: "
                                     "The picture has 60000 x 60000 pixels"))
        << refused.err.toStdString();
}
