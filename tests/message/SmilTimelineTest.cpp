#include "SmilFrameRenderer.h"
#include "SmilTime.h"
#include "SmilTimelineReader.h"
#include "TextDecoder.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {
using Kind = SmilTimeline::Kind;

// Presentations as other programs write them, with their media beside them.
class SmilTimelineTest : public ::testing::Test {
protected:
    QString path(const QString& name) const { return m_folder.filePath(name); }

    void write(const QString& name, const QByteArray& bytes) const {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_EQ(file.write(bytes), bytes.size());
    }
    void picture(const QString& name, QSize size, QColor colour) const {
        QImage image(size, QImage::Format_RGB32);
        image.fill(colour);
        ASSERT_TRUE(image.save(path(name)));
    }
    // A sine tone of the given length, made by sox as any recorder would.
    void tone(const QString& name, double seconds) const {
        QProcess sox;
        sox.start("sox", {"-n", "-r", "8000", "-c", "1", "-b", "16", path(name), "synth",
                          QString::number(seconds), "sine", "440"});
        ASSERT_TRUE(sox.waitForFinished(30000));
        ASSERT_EQ(sox.exitCode(), 0);
    }
    SmilTimeline read(const QByteArray& body, const QByteArray& layout = QByteArray()) const {
        const QByteArray smil =
            "<smil><head><layout>" + layout + "</layout></head><body>" + body + "</body></smil>";
        write("show.smil", smil);
        SmilTimeline timeline;
        EXPECT_TRUE(SmilTimelineReader::read(path("show.smil"), timeline));
        return timeline;
    }
    static QList<qint64> spans(const SmilTimeline& timeline) {
        QList<qint64> times;
        for (const SmilTimeline::Item& item : timeline.items())
            times << item.start << item.end;
        return times;
    }

    QTemporaryDir m_folder;
};

bool mentions(const QStringList& problems, const QString& word) {
    return !problems.filter(word).isEmpty();
}
} // namespace

TEST(SmilTimeTest, ReadsEveryFormOfTimeValueAndRefusesTheRest) {
    EXPECT_EQ(SmilTime::parse("3s"), 3000);
    EXPECT_EQ(SmilTime::parse("2.5s"), 2500) << "fractions of seconds are kept";
    EXPECT_EQ(SmilTime::parse("3"), 3000) << "a bare number is seconds";
    EXPECT_EQ(SmilTime::parse("1500ms"), 1500);
    EXPECT_EQ(SmilTime::parse(" 2min "), 120000);
    EXPECT_EQ(SmilTime::parse("00:00:03.5"), 3500);
    EXPECT_EQ(SmilTime::parse("0:03"), 3000);
    EXPECT_EQ(SmilTime::parse("1:02:03"), 3723000);
    EXPECT_EQ(SmilTime::parse("0.0006s"), 1) << "rounded, not cut to 0";
    for (const char* bad :
         {"", "indefinite", "-1s", "3 s", "0:60", "1:5", "1e3", "3sec", "99999h", "nan", "2,5s"})
        EXPECT_FALSE(SmilTime::parse(bad).has_value()) << bad;
    EXPECT_TRUE(SmilTime::isIndefinite(" indefinite"));
}

TEST(TextDecoderTest, ByteOrderMarkThenUtf8ThenTheWesternWindowsCodePage) {
    EXPECT_EQ(TextDecoder::decode("Gr\xc3\xbc\xc3\x9f"
                                  "e"),
              QString::fromUtf8("Grüße"));
    EXPECT_EQ(TextDecoder::decode("Gr\xfc\xdf"
                                  "e \x80 \x93ok\x94"),
              QString::fromUtf8("Grüße € “ok”"))
        << "not Latin-1: 0x80 is the euro sign and 0x93/0x94 quotes in that code page";
    EXPECT_EQ(TextDecoder::decode("\xef\xbb\xbfok"), "ok") << "the mark is not text";
    EXPECT_EQ(TextDecoder::decode(QByteArray("\xff\xfeo\0k\0", 6)), "ok");
    EXPECT_EQ(TextDecoder::decode(QByteArray("\xfe\xff\0o\0k", 6)), "ok");
    EXPECT_EQ(TextDecoder::decode("\x81"), QString(QChar(0x81))) << "unassigned stays itself";
}

TEST_F(SmilTimelineTest, SeqPlaysParsInTurnWithEveryFormOfDuration) {
    picture("a.png", {20, 20}, Qt::red);
    picture("b.png", {20, 20}, Qt::green);
    picture("c.png", {20, 20}, Qt::blue);
    const SmilTimeline timeline = read("<seq>"
                                       "<par dur=\"3s\"><img src=\"a.png\"/></par>"
                                       "<par dur=\"1500ms\"><img src=\"b.png\"/></par>"
                                       "<par dur=\"0:02.25\"><img src=\"c.png\"/></par>"
                                       "</seq>");
    EXPECT_EQ(spans(timeline), QList<qint64>({0, 3000, 3000, 4500, 4500, 6750}));
    EXPECT_EQ(timeline.duration(), 6750);
    EXPECT_EQ(timeline.visibleChanges(), QList<qint64>({0, 3000, 4500}));
    EXPECT_TRUE(timeline.problems().isEmpty()) << timeline.problems().join('\n').toStdString();
    ASSERT_EQ(timeline.itemsAt(3000).size(), 1) << "an item's end belongs to the next";
    EXPECT_TRUE(timeline.itemsAt(3000)[0]->file.endsWith("b.png"));
    EXPECT_TRUE(timeline.itemsAt(6750).isEmpty());
}

TEST_F(SmilTimelineTest, BeginEndAndDurMoveAndCutTheirElements) {
    picture("a.png", {20, 20}, Qt::red);
    picture("b.png", {20, 20}, Qt::green);
    // In a par begin counts from the par; in a seq from the previous end,
    // and end is counted from the same point as begin.
    const SmilTimeline timeline = read("<par dur=\"4s\">"
                                       "<img src=\"a.png\" begin=\"1s\" dur=\"10s\"/>"
                                       "<img src=\"b.png\" begin=\"0.5\" end=\"2s\" dur=\"5s\"/>"
                                       "</par>"
                                       "<par begin=\"1s\" end=\"00:00:02\">"
                                       "<img src=\"a.png\"/></par>");
    EXPECT_EQ(spans(timeline), QList<qint64>({1000, 4000, 500, 2000, 5000, 6000}))
        << "the par's dur cuts the picture, end cuts before dur, and the second par starts "
           "1 s after the first ends";
}

TEST_F(SmilTimelineTest, MissingDurationsComeFromTheMediaAndTheTimedSiblings) {
    picture("a.png", {20, 20}, Qt::red);
    tone("long.wav", 1.5);
    tone("short.wav", 0.25);
    write("t.txt", "Hello\r\n");
    const SmilTimeline timeline = read("<par><img src=\"a.png\"/><text src=\"t.txt\"/>"
                                       "<audio src=\"long.wav\"/></par>"
                                       "<par dur=\"indefinite\"><audio src=\"short.wav\"/>"
                                       "<img src=\"a.png\"/></par>");
    ASSERT_EQ(timeline.items().size(), 5);
    EXPECT_EQ(spans(timeline), QList<qint64>({0, 1500, 0, 1500, 0, 1500, 1500, 1750, 1500, 1750}))
        << "pictures and texts last as long as the sound beside them";
    EXPECT_EQ(timeline.items()[1].kind, Kind::Text);
    EXPECT_EQ(timeline.items()[1].text, "Hello") << "the closing line break is no text";
    EXPECT_EQ(timeline.items()[2].kind, Kind::Audio);
    EXPECT_EQ(timeline.visibleChanges(), QList<qint64>({0, 1500}))
        << "the same picture and a text ending is a change; a sound alone is none";
}

TEST_F(SmilTimelineTest, RegionsInPixelsAndPercentPlaceTheMedia) {
    picture("a.png", {20, 20}, Qt::red);
    write("t.txt", "x");
    const SmilTimeline timeline =
        read("<par dur=\"1s\"><img src=\"a.png\" region=\"Image\"/>"
             "<text src=\"t.txt\" region=\"Text\"/><img src=\"a.png\" region=\"nowhere\"/></par>",
             "<root-layout width=\"200px\" height=\"100\" background-color=\"#000080\"/>"
             "<region id=\"Image\" left=\"10%\" top=\"0\" width=\"50%\" height=\"75%\"/>"
             "<region id=\"Text\" left=\"0\" top=\"75px\" height=\"40\"/>");
    EXPECT_EQ(timeline.size(), QSize(200, 100));
    EXPECT_EQ(timeline.background(), QColor("#000080"));
    ASSERT_EQ(timeline.items().size(), 3);
    EXPECT_EQ(timeline.items()[0].area, QRect(20, 0, 100, 75));
    EXPECT_EQ(timeline.items()[1].area, QRect(0, 75, 200, 25))
        << "no width reaches the right edge; the height is cut at the screen";
    EXPECT_EQ(timeline.items()[2].area, QRect(0, 0, 200, 100)) << "an unknown region: the screen";
}

TEST_F(SmilTimelineTest, MediaNamesAreUrisResolvedOnlyInTheFolder) {
    picture("my photo.png", {8, 8}, Qt::red);
    picture("image1.png", {8, 8}, Qt::green);
    write("Gruss.txt", "Gr\xfc\xdf"
                       "e\n");
    const SmilTimeline timeline = read("<par dur=\"1s\"><img src=\"my%20photo.png\"/>"
                                       "<img src=\"cid:image1\"/><text src=\"./Gruss.txt\"/>"
                                       "<img src=\"../show.smil\"/><img src=\"/etc/hostname\"/>"
                                       "<img src=\"http://example.org/x.png\"/>"
                                       "<img src=\"gone.png\"/></par>");
    ASSERT_EQ(timeline.items().size(), 3);
    EXPECT_EQ(timeline.items()[0].file, path("my photo.png"));
    EXPECT_EQ(timeline.items()[1].file, path("image1.png"));
    EXPECT_EQ(timeline.items()[2].text, QString::fromUtf8("Grüße"));
    for (const char* named : {"../show.smil", "/etc/hostname", "http://", "gone.png"})
        EXPECT_TRUE(mentions(timeline.problems(), named)) << named;
}

TEST_F(SmilTimelineTest, BadPresentationsKeepWhatTheyCanAndSayWhatIsWrong) {
    write("broken.smil", "<smil><body><par dur=\"1s\">");
    SmilTimeline timeline;
    EXPECT_FALSE(SmilTimelineReader::read(path("broken.smil"), timeline));
    EXPECT_TRUE(mentions(timeline.problems(), "broken.smil"));
    write("other.smil", "<html><body/></html>");
    EXPECT_FALSE(SmilTimelineReader::read(path("other.smil"), timeline));
    EXPECT_FALSE(SmilTimelineReader::read(path("absent.smil"), timeline));

    write("nobody.smil", "<smil><head/></smil>");
    EXPECT_TRUE(SmilTimelineReader::read(path("nobody.smil"), timeline));
    EXPECT_TRUE(timeline.items().isEmpty());
    EXPECT_EQ(timeline.problems().size(), 1);
    EXPECT_EQ(timeline.visibleChanges(), QList<qint64>({0})) << "the empty screen is shown";

    picture("a.png", {8, 8}, Qt::red);
    write("other.smil", "<smil><body/></smil>");
    timeline = read("<par dur=\"2s\"><ref src=\"show.smil\"/><ref src=\"other.smil\"/>"
                    "<img src=\"a.png\" begin=\"soon\"/></par><par><img src=\"a.png\"/></par>");
    ASSERT_EQ(timeline.items().size(), 2);
    EXPECT_EQ(spans(timeline), QList<qint64>({0, 2000, 2000, 2000}))
        << "an unreadable begin is 0; a picture with nothing timed has no time";
    EXPECT_EQ(timeline.problems().size(), 4) << timeline.problems().join('\n').toStdString();
}

TEST_F(SmilTimelineTest, HostilePresentationsMeetTheLimits) {
    picture("a.png", {8, 8}, Qt::red);
    QByteArray deep;
    for (int i = 0; i < 5000; ++i)
        deep += "<par>";
    deep += "<img src=\"a.png\" dur=\"1s\"/>";
    for (int i = 0; i < 5000; ++i)
        deep += "</par>";
    SmilTimeline timeline = read(deep);
    EXPECT_TRUE(timeline.items().isEmpty());
    EXPECT_TRUE(mentions(timeline.problems(), QString::number(SmilTimelineReader::kMaxDepth)));

    QByteArray many;
    for (int i = 0; i < SmilTimelineReader::kMaxItems + 10; ++i)
        many += "<img src=\"a.png\" dur=\"1ms\"/>";
    timeline = read(many);
    EXPECT_EQ(timeline.items().size(), SmilTimelineReader::kMaxItems);
    EXPECT_EQ(timeline.duration(), SmilTimelineReader::kMaxItems + 10)
        << "what is left out still takes its time";

    QByteArray endless;
    for (int i = 0; i < 30; ++i)
        endless += "<par dur=\"1h\"><img src=\"a.png\"/></par>";
    timeline = read(endless);
    EXPECT_EQ(timeline.duration(), SmilTime::kMaxMs);
    EXPECT_EQ(timeline.items().size(), 24);
    EXPECT_EQ(timeline.problems().size(), 1);
}

TEST_F(SmilTimelineTest, FramesShowEachPictureFittedInItsRegionAndTheText) {
    picture("wide.png", {80, 20}, Qt::red);
    write("t.txt", "Hello there, a text long enough to wrap");
    write("broken.png", "not a picture");
    const SmilTimeline timeline =
        read("<par dur=\"1s\"><img src=\"wide.png\" region=\"Image\"/>"
             "<text src=\"t.txt\" region=\"Text\"/></par>"
             "<par dur=\"1s\"><img src=\"broken.png\" region=\"Image\"/></par>",
             "<root-layout width=\"160\" height=\"160\"/>"
             "<region id=\"Image\" left=\"0\" top=\"0\" width=\"160\" height=\"120\"/>"
             "<region id=\"Text\" left=\"0\" top=\"120\" width=\"160\" height=\"40\" "
             "background-color=\"yellow\"/>");
    SmilFrameRenderer renderer(timeline);
    const QImage first = renderer.render(0);
    ASSERT_EQ(first.size(), QSize(160, 160));
    // 80 x 20 fitted into 160 x 120 is 160 x 40, centred at 40..80.
    EXPECT_EQ(QColor(first.pixel(80, 60)), QColor(Qt::red));
    EXPECT_EQ(QColor(first.pixel(5, 41)), QColor(Qt::red));
    EXPECT_EQ(QColor(first.pixel(80, 30)), QColor(Qt::white)) << "the shape is kept";
    EXPECT_EQ(QColor(first.pixel(80, 100)), QColor(Qt::white));
    int ink = 0;
    for (int y = 120; y < 160; ++y)
        for (int x = 0; x < 160; ++x)
            ink += QColor(first.pixel(x, y)).lightness() < 100;
    EXPECT_GT(ink, 50) << "the text is drawn";
    EXPECT_EQ(QColor(first.pixel(159, 159)), QColor(Qt::yellow));
    const QImage second = renderer.render(1000);
    EXPECT_EQ(QColor(second.pixel(80, 60)), QColor(Qt::white)) << "a broken picture is left out";
    EXPECT_TRUE(mentions(renderer.problems(), "broken.png"));
}
