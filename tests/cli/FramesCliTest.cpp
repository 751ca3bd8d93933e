#include "ProgramRun.h"
#include "QtPrinters.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <gtest/gtest.h>

// "frames" on presentations we export and on ones other programs write,
// checked by the frames' names and pixels.
class FramesCliTest : public ::testing::Test {
protected:
    ProgramRun cli(const QStringList& arguments) const {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("XDG_DATA_HOME", m_home.path() + "/xdg");
        env.insert("LANG", "en_US.UTF-8");
        return runProgram(cliProgram(), arguments, env, m_home.path());
    }
    QString path(const QString& name) const { return m_home.path() + "/" + name; }
    void make(const QString& program, const QStringList& arguments) const {
        const ProgramRun run =
            runProgram(program, arguments, QProcessEnvironment::systemEnvironment(), m_home.path());
        ASSERT_EQ(run.code, 0) << run.err.toStdString();
    }
    void write(const QString& name, const QByteArray& bytes) const {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QStringList frames(const QString& folder) const {
        return QDir(path(folder)).entryList({"*.png"}, QDir::Files, QDir::Name);
    }
    QColor pixel(const QString& frame, QPoint at) const {
        const QImage image(path(frame));
        EXPECT_FALSE(image.isNull()) << frame.toStdString();
        return image.isNull() ? QColor() : QColor(image.pixel(at));
    }
    // Dark pixels in a rectangle: text drawn there.
    int ink(const QString& frame, QRect area) const {
        const QImage image(path(frame));
        int dark = 0;
        for (int y = area.top(); y <= area.bottom(); ++y)
            for (int x = area.left(); x <= area.right(); ++x)
                dark += QColor(image.pixel(x, y)).lightness() < 100;
        return dark;
    }

    QTemporaryDir m_home;
};

namespace {
// A JPEG's colours are near, not exact.
void expectNear(const QColor& seen, const QColor& wanted, const char* what) {
    EXPECT_NEAR(seen.red(), wanted.red(), 40) << what;
    EXPECT_NEAR(seen.green(), wanted.green(), 40) << what;
    EXPECT_NEAR(seen.blue(), wanted.blue(), 40) << what;
}
} // namespace

TEST_F(FramesCliTest, AnExportedMessageGivesOneFramePerSlideAtItsStart) {
    const ProgramRun made =
        cli({"new", "m.mms", "--slide", "3000", "--color", "FF0000", "--slide-text", "First slide",
             "--slide", "1500", "--color", "00FF00", "--slide", "2000", "--color", "0000FF",
             "--slide-text", "Last"});
    ASSERT_EQ(made.code, 0) << made.err.toStdString();
    ASSERT_TRUE(QDir(m_home.path()).mkpath("set"));
    const ProgramRun exported =
        cli({"export", "m.mms", "--kind", "smil", "--format", "s", "set/mms.smil"});
    ASSERT_EQ(exported.code, 0) << exported.err.toStdString();

    const ProgramRun run = cli({"frames", "set/mms.smil", "out"});
    ASSERT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_EQ(frames("out"), QStringList({"000000.png", "003000.png", "004500.png"}))
        << "1.500s is one and a half seconds here, not one";
    EXPECT_EQ(run.out.split('\n', Qt::SkipEmptyParts), frames("out"));
    EXPECT_TRUE(run.err.isEmpty()) << run.err.toStdString();
    EXPECT_EQ(QImage(path("out/000000.png")).size(), QSize(160, 160));
    expectNear(pixel("out/000000.png", {80, 60}), Qt::red, "slide 1");
    expectNear(pixel("out/003000.png", {80, 60}), Qt::green, "slide 2");
    expectNear(pixel("out/004500.png", {80, 60}), Qt::blue, "slide 3");
    const QRect textRegion(0, 120, 160, 20);
    EXPECT_GT(ink("out/000000.png", textRegion), 20);
    EXPECT_EQ(ink("out/003000.png", textRegion), 0) << "slide 2 has no text";
    EXPECT_GT(ink("out/004500.png", textRegion), 5);
}

TEST_F(FramesCliTest, AForeignPresentationInSecondsAndMillisecondsAndSoundLength) {
    make("convert", {"-size", "100x80", "xc:red", "red.png"});
    make("convert", {"-size", "50x80", "xc:lime", "green.gif"});
    make("convert", {"-size", "100x80", "xc:blue", "blue.jpg"});
    make("sox",
         {"-n", "-r", "8000", "-c", "1", "-b", "16", "tone.wav", "synth", "1.25", "sine", "440"});
    write("show.smil",
          "<?xml version=\"1.0\"?>\n<smil xmlns=\"http://www.w3.org/2001/SMIL20/Language\">"
          "<head><layout><root-layout width=\"100\" height=\"80\" background-color=\"black\"/>"
          "<region id=\"pic\" left=\"0\" top=\"0\" width=\"100%\" height=\"100%\"/></layout>"
          "</head><body><seq>"
          "<par dur=\"2s\"><img src=\"red.png\" region=\"pic\"/></par>"
          "<par dur=\"750ms\"><img src=\"green.gif\" region=\"pic\"/></par>"
          "<par><img src=\"blue.jpg\" region=\"pic\"/><audio src=\"tone.wav\"/></par>"
          "<par dur=\"1s\"><img src=\"missing.png\" region=\"pic\"/></par>"
          "</seq></body></smil>");

    const ProgramRun run = cli({"frames", "show.smil", "out"});
    ASSERT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_EQ(frames("out"), QStringList({"000000.png", "002000.png", "002750.png", "004000.png"}))
        << "the sound's 1.25 s decide the third part's length";
    EXPECT_EQ(pixel("out/000000.png", {50, 40}), QColor(Qt::red));
    EXPECT_EQ(pixel("out/002000.png", {50, 40}), QColor(Qt::green));
    EXPECT_EQ(pixel("out/002000.png", {10, 40}), QColor(Qt::black))
        << "a narrow picture keeps its shape on the background";
    expectNear(pixel("out/002750.png", {50, 40}), Qt::blue, "third part");
    EXPECT_EQ(pixel("out/004000.png", {50, 40}), QColor(Qt::black));
    EXPECT_TRUE(run.err.contains("missing.png")) << run.err.toStdString();
}

TEST_F(FramesCliTest, AFileThatIsNoPresentationIsRefused) {
    write("notes.smil", "just some notes, no markup");
    const ProgramRun run = cli({"frames", "notes.smil", "out"});
    EXPECT_EQ(run.code, 1);
    EXPECT_TRUE(run.err.contains("not a SMIL presentation")) << run.err.toStdString();
    EXPECT_FALSE(QDir(path("out")).exists()) << "nothing is made for it";
    EXPECT_EQ(cli({"frames", "notes.smil"}).code, 64);
}
