#include "FakeClock.h"
#include "Mci.h"
#include "ProgramRun.h"
#include "QtPrinters.h"
#include "ScriptedAudioBackend.h"
#include "ctlSmilPlayer.h"

#include <QFile>
#include <QImage>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

// The player stepped by a clock that moves only when the test says, on the
// scripted sound card. Its clock starts shortly before the tick counter wraps.
class SmilPlayerTest : public ::testing::Test {
protected:
    void SetUp() override {
        Mci::install(&m_mci);
        m_mci.setTrace([this](const QString& command) { m_sent << command; });
        for (const auto& [name, colour] :
             {std::pair{"one.png", Qt::red}, std::pair{"two.png", Qt::green},
              std::pair{"three.png", Qt::blue}}) {
            QImage picture(40, 30, QImage::Format_RGB32);
            picture.fill(colour);
            ASSERT_TRUE(picture.save(path(name)));
        }
        const ProgramRun tone = runProgram("sox", {"-n", "-r", "8000", "-c", "1", "-b", "16",
                                                   path("hum.wav"), "synth", "0.5", "sine", "440"});
        ASSERT_EQ(tone.code, 0) << tone.err.toStdString();
    }
    void TearDown() override {
        m_player.reset();
        Mci::install(nullptr);
    }

    QString path(const QString& name) const { return m_folder.filePath(name); }
    void write(const QString& name, const QByteArray& text) const {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }
    // Three slides of 3000, 1500 and 2000 ms; the second with a sound.
    bool openThreeSlides() {
        write("show.smil", "<smil><head><layout><root-layout width=\"40\" height=\"30\"/>"
                           "</layout></head><body>"
                           "<par dur=\"3000ms\"><img src=\"one.png\"/></par>"
                           "<par dur=\"1.5s\"><img src=\"two.png\"/><audio src=\"hum.wav\"/></par>"
                           "<par dur=\"00:00:02\"><img src=\"three.png\"/></par>"
                           "</body></smil>");
        m_player = std::make_unique<ctlSmilPlayer>();
        m_player->resize(80, 60);
        return m_player->open(path("show.smil"));
    }
    // Moves the clock on and waits for the player's next look at it.
    void step(std::uint32_t ms) {
        QSignalSpy ticked(m_player.get(), &ctlSmilPlayer::positionChanged);
        m_clock.advance(ms);
        m_card.advance(ms);
        ASSERT_TRUE(ticked.wait(2000));
    }
    QColor shown() const { return QColor(m_player->frame().pixel(20, 15)); }

    QTemporaryDir m_folder;
    FakeClock m_clock{0xFFFFFFFFu - 1000, QDateTime(QDate(2026, 3, 7), QTime(9, 5, 4))};
    ScopedClock m_useClock{m_clock};
    ScriptedAudioBackend m_card;
    Mci m_mci{m_card};
    QStringList m_sent;
    std::unique_ptr<ctlSmilPlayer> m_player;
};

TEST_F(SmilPlayerTest, PlaysEachSlideForItsTimeAndStopsAtTheEnd) {
    ASSERT_TRUE(openThreeSlides());
    EXPECT_TRUE(m_player->problems().isEmpty()) << m_player->problems().join('\n').toStdString();
    EXPECT_EQ(m_player->duration(), 6500);
    EXPECT_EQ(shown(), QColor(Qt::red)) << "the first picture shows before playing";
    EXPECT_EQ(m_player->accessibleName(), "Presentation player");
    QSignalSpy stopped(m_player.get(), &ctlSmilPlayer::stopped);

    m_player->play();
    EXPECT_TRUE(m_player->isPlaying());
    step(2999);
    EXPECT_EQ(m_player->position(), 2999) << "across the tick counter's wrap";
    EXPECT_EQ(shown(), QColor(Qt::red));
    EXPECT_TRUE(m_sent.filter("hum.wav").isEmpty()) << "the sound belongs to slide 2";
    step(1);
    EXPECT_EQ(shown(), QColor(Qt::green));
    EXPECT_EQ(m_sent.filter("hum.wav").size(), 1) << m_sent.join('\n').toStdString();
    EXPECT_TRUE(m_sent.contains("play playsound from 1"));
    // One late tick: the time comes from the clock, so nothing is shown late
    // and the presentation keeps its length.
    step(2200);
    EXPECT_EQ(m_player->position(), 5200);
    EXPECT_EQ(shown(), QColor(Qt::blue));
    EXPECT_EQ(m_sent.filter("hum.wav").size(), 1) << "the sound is not started again";
    EXPECT_TRUE(stopped.isEmpty());
    EXPECT_EQ(m_player->grab().toImage().pixelColor(40, 30), QColor(Qt::blue))
        << "the frame is painted across the widget";
    step(1300);
    EXPECT_FALSE(m_player->isPlaying());
    EXPECT_EQ(stopped.size(), 1);
    EXPECT_EQ(m_player->position(), 6500);
}

TEST_F(SmilPlayerTest, StopEndsPictureAndSoundAndPlayStartsAgain) {
    ASSERT_TRUE(openThreeSlides());
    QSignalSpy stopped(m_player.get(), &ctlSmilPlayer::stopped);
    m_player->play();
    step(3100);
    m_sent.clear();
    m_player->stop();
    EXPECT_EQ(stopped.size(), 1);
    EXPECT_TRUE(m_sent.contains("stop playsound")) << m_sent.join('\n').toStdString();
    m_player->stop();
    EXPECT_EQ(stopped.size(), 1) << "stopping a stopped player says nothing";
    m_player->play();
    EXPECT_EQ(shown(), QColor(Qt::red));
    step(10);
    EXPECT_EQ(m_player->position(), 10);
}

TEST_F(SmilPlayerTest, BadPresentationsShowWhatTheyCanAndNeverHang) {
    write("show.smil", "<smil><body><par dur=\"1s\"><img src=\"one.png\"/>"
                       "<img src=\"gone.png\"/><ref src=\"show.smil\"/></par></body></smil>");
    m_player = std::make_unique<ctlSmilPlayer>();
    ASSERT_TRUE(m_player->open(path("show.smil")));
    EXPECT_EQ(m_player->problems().size(), 2) << m_player->problems().join('\n').toStdString();
    EXPECT_EQ(m_player->frame().size(), QSize(160, 160)) << "a screen of its own size";
    EXPECT_EQ(QColor(m_player->frame().pixel(80, 80)), QColor(Qt::red));
    QSignalSpy stopped(m_player.get(), &ctlSmilPlayer::stopped);
    m_player->play();
    step(1000);
    EXPECT_EQ(stopped.size(), 1);

    write("show.smil", "<smil><body><par dur=");
    EXPECT_FALSE(m_player->open(path("show.smil")));
    EXPECT_EQ(m_player->problems().size(), 1);
    m_player->play();
    step(0);
    EXPECT_EQ(stopped.size(), 2) << "nothing to play ends at once";
}

// The video decodes on the real clock while the presentation's time stays
// on the test's: its first picture shows before it plays, its moving
// pictures while it plays, and its first picture again after its time.
TEST_F(SmilPlayerTest, VideoPlaysInItsAreaForItsTime) {
    const ProgramRun clip =
        runProgram("ffmpeg", {"-loglevel", "error", "-f", "lavfi", "-i",
                              "color=c=red:s=64x48:d=0.2:r=10[a];color=c=lime:s=64x48:d=3:r=10[b];"
                              "[a][b]concat=n=2:v=1",
                              "-pix_fmt", "yuv420p", path("clip.mp4")});
    ASSERT_EQ(clip.code, 0) << clip.err.toStdString();
    write("show.smil", "<smil><head><layout><root-layout width=\"80\" height=\"60\"/>"
                       "<region id=\"v\" left=\"0\" top=\"0\" width=\"80\" height=\"60\"/>"
                       "</layout></head><body><par dur=\"2s\"><video src=\"clip.mp4\" "
                       "region=\"v\"/></par><par dur=\"1s\"><img src=\"three.png\"/></par>"
                       "</body></smil>");
    m_player = std::make_unique<ctlSmilPlayer>();
    ASSERT_TRUE(m_player->open(path("show.smil")));
    const auto isRed = [this] { return shown().red() > 200 && shown().green() < 80; };
    const auto isGreen = [this] { return shown().green() > 200 && shown().red() < 80; };
    EXPECT_TRUE(isRed()) << "the first picture before playing";
    m_player->play();
    QTRY_VERIFY_WITH_TIMEOUT(isGreen(), 5000);
    EXPECT_TRUE(m_player->problems().isEmpty()) << m_player->problems().join('\n').toStdString();
    step(2000);
    EXPECT_EQ(shown(), QColor(Qt::blue)) << "the video ends with its time";
    QTest::qWait(300);
    EXPECT_EQ(shown(), QColor(Qt::blue)) << "and no late picture of it comes back";

    write("clip.mp4", QByteArray(4096, 'x'));
    ASSERT_TRUE(m_player->open(path("show.smil")));
    m_player->play();
    QTRY_VERIFY_WITH_TIMEOUT(!m_player->problems().filter("clip.mp4").isEmpty(), 5000);
    EXPECT_TRUE(m_player->isPlaying()) << "a broken video does not stop the presentation";
}
