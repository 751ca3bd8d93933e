#include "AppGlobals.h"
#include "ContentClassChecker.h"
#include "MediaFormat.h"
#include "ProgramRun.h"
#include "WorkFolderTest.h"
#include "clsMMSManager.h"
#include "clsPropertiesXML.h"

#include <QFile>
#include <QImage>

namespace {
using F = MediaFormat;

QByteArray bytesOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A whole MIDI file of one track, with the scalable-polyphony message before
// its note when asked to.
QByteArray midiFile(bool polyphonyMessage) {
    QByteArray track;
    if (polyphonyMessage)
        track += QByteArray::fromHex("00f0077f7f0b01000102f7"); // F0, length 7, 7F 7F 0B 01 ...
    track += QByteArray::fromHex("00903c40"
                                 "8170803c00"
                                 "00ff2f00");
    QByteArray file = QByteArray::fromHex("4d546864000000060000000101e0") + "MTrk";
    const quint32 length = quint32(track.size());
    for (int shift = 24; shift >= 0; shift -= 8)
        file.append(char((length >> shift) & 0xFF));
    return file + track;
}
} // namespace

class ContentClassTest : public WorkFolderTest {
protected:
    void SetUp() override {
        WorkFolderTest::SetUp();
        m_message = m_manager.CreateMsg();
        m_message->setName("Classes");
    }

    // A file made by an outside tool into the data folder.
    QString made(const QString& program, const QStringList& arguments, const QString& name) {
        const ProgramRun run =
            runProgram(program, arguments, QProcessEnvironment::systemEnvironment(), m_dataHome);
        EXPECT_EQ(run.code, 0) << program.toStdString() << ": " << run.err.toStdString();
        return dataFile(name);
    }
    QString picture(const QString& name, QSize size, const QStringList& extra = {}) {
        const QString geometry = QString("%1x%2").arg(size.width()).arg(size.height());
        return made("convert",
                    QStringList{"-seed", "3", "-size", geometry, "plasma:"} + extra +
                        QStringList{name},
                    name);
    }
    QString sound(const QString& name, int rate, int seconds, const QStringList& codec = {}) {
        return made(
            "ffmpeg",
            QStringList{
                "-nostdin", "-v", "error", "-y", "-f", "lavfi", "-i",
                QString("sine=frequency=440:sample_rate=%1:duration=%2").arg(rate).arg(seconds)} +
                codec + QStringList{name},
            name);
    }

    clsSlide& slideWithPicture(const QString& file) {
        clsSlide& slide = m_message->Slides().Add();
        slide.setDuration(3000);
        slide.setImage(QImage(file));
        return slide;
    }
    void setSound(clsSlide& slide, const QString& file, const QString& name) {
        ASSERT_TRUE(QFile::copy(file, m_work + name));
        slide.setSound(name);
    }

    ContentClassChecker::Report check(ContentClass::Id chosen = ContentClass::ImageBasic) {
        QString why;
        const auto report = ContentClassChecker::checkMessage(m_manager, *m_message, chosen, &why);
        EXPECT_TRUE(report.has_value()) << why.toStdString();
        return report.value_or(ContentClassChecker::Report{});
    }
    // The checker over parts given directly, as a packed message would hold them.
    ContentClassChecker partsChecker(const QList<SendForm::Part>& parts, qint64 bytes = 1000) {
        SendForm form;
        form.assign(bytes, parts);
        return ContentClassChecker(form);
    }
    static QStringList texts(const QList<ContentClassChecker::Broken>& broken) {
        QStringList lines;
        for (const auto& rule : broken)
            lines << rule.part + ": " + rule.text;
        return lines;
    }

    clsMessage* m_message = nullptr;
};

TEST_F(ContentClassTest, FormatsAreToldFromTheBytesOfOutsideToolsFiles) {
    const auto facts = [](const QString& path) { return F::identify(bytesOf(path)); };
    const F::Facts baseline = facts(picture("b.jpg", {160, 120}));
    EXPECT_EQ(baseline.kind, F::JpegBaseline);
    EXPECT_EQ(baseline.resolution, QSize(160, 120));
    EXPECT_FALSE(baseline.truncated);
    EXPECT_EQ(facts(picture("p.jpg", {33, 17}, {"-interlace", "JPEG"})).kind, F::JpegProgressive);
    EXPECT_EQ(facts(picture("p.jpg", {33, 17}, {"-interlace", "JPEG"})).resolution, QSize(33, 17));
    EXPECT_EQ(facts(made("convert", {"-size", "9x7", "xc:red", "GIF87:old.gif"}, "old.gif")).kind,
              F::Gif87a);
    const F::Facts gif = facts(picture("new.gif", {9, 7}));
    EXPECT_EQ(gif.kind, F::Gif89a);
    EXPECT_EQ(gif.resolution, QSize(9, 7));
    const F::Facts wbmp = facts(picture("w.wbmp", {13, 5}));
    EXPECT_EQ(wbmp.kind, F::Wbmp);
    EXPECT_EQ(wbmp.resolution, QSize(13, 5));
    EXPECT_FALSE(wbmp.truncated);
    EXPECT_EQ(facts(picture("i.png", {300, 200})).resolution, QSize(300, 200));
    const F::Facts mp3 = facts(sound("s.mp3", 44100, 2, {"-c:a", "libmp3lame", "-b:a", "64k"}));
    EXPECT_EQ(mp3.kind, F::Mp3);
    EXPECT_NEAR(double(mp3.durationMs), 2000, 60);
    const F::Facts wav = facts(sound("s.wav", 8000, 3, {"-c:a", "pcm_s16le"}));
    EXPECT_EQ(wav.kind, F::Wav);
    EXPECT_EQ(wav.durationMs, 3000);
}

TEST_F(ContentClassTest, MidiCountsAsSpMidiOnlyWithItsPolyphonyMessage) {
    EXPECT_EQ(F::identify(midiFile(true)).kind, F::SpMidi);
    EXPECT_EQ(F::identify(midiFile(false)).kind, F::Midi);
    EXPECT_EQ(F::identify(bytesOf(QStringLiteral(VELLUMO_SOURCE_DIR) +
                                  "/tests/data/audio/tempo_change.mid"))
                  .kind,
              F::Midi);
    EXPECT_TRUE(F::identify(midiFile(true).chopped(3)).truncated);
}

TEST_F(ContentClassTest, TextsAreToldByTheirEncoding) {
    EXPECT_EQ(F::identify("Hello\r\n").kind, F::TextAscii);
    EXPECT_EQ(F::identify("Grüße\r\n").kind, F::TextUtf8);
    EXPECT_EQ(F::identify("Gr\xFC\xDF"
                          "e")
                  .kind,
              F::TextEightBit);
    EXPECT_EQ(F::identify(QByteArray("\xFF\xFEH\0i\0", 6)).kind, F::TextUtf16);
    EXPECT_EQ(F::identify("<smil><body/></smil>").kind, F::Smil);
}

TEST_F(ContentClassTest, APictureAtTheImageBasicEdgeFitsAndOnePixelMoreDoesNot) {
    slideWithPicture(picture("edge.jpg", {160, 120}));
    const auto edge = check();
    EXPECT_EQ(edge.smallest, ContentClass::ImageBasic)
        << texts(edge.broken).join('\n').toStdString();
    EXPECT_TRUE(edge.fits());
    // In the order they travel: the presentation first.
    ASSERT_EQ(edge.parts.size(), 2);
    EXPECT_EQ(edge.parts[0].facts.kind, F::Smil);
    EXPECT_EQ(edge.parts[1].facts.kind, F::JpegBaseline);

    m_message->Slides().Item(1).setImage(QImage(picture("wide.jpg", {161, 120})));
    const auto wide = check();
    EXPECT_EQ(wide.smallest, ContentClass::ImageRich);
    ASSERT_EQ(wide.broken.size(), 1);
    EXPECT_EQ(wide.broken[0].part, "Slide1.jpg");
    EXPECT_EQ(wide.broken[0].text,
              "Slide1.jpg is 161x120 pixels; Image Basic allows at most 160x120.");
}

TEST_F(ContentClassTest, A640x480PictureMakesItImageRichAndOneMoreColumnFitsNoClass) {
    slideWithPicture(picture("vga.jpg", {640, 480}));
    AppGlobals::settings()->SetProp("preferences", "JpgQuality", "60");
    EXPECT_EQ(check().smallest, ContentClass::ImageRich);
    m_message->Slides().Item(1).setImage(QImage(picture("wider.jpg", {641, 480})));
    const auto report = check(ContentClass::VideoRich);
    EXPECT_FALSE(report.smallest.has_value());
    EXPECT_EQ(report.broken.size(), 1);
}

TEST_F(ContentClassTest, PngPicturesBreakImageBasicButNotImageRich) {
    AppGlobals::settings()->SetProp("preferences", "ImageFormat", "png");
    slideWithPicture(picture("small.png", {80, 60}));
    const auto report = check();
    EXPECT_EQ(report.smallest, ContentClass::ImageRich);
    EXPECT_EQ(texts(report.broken),
              QStringList{"Slide1.png: Slide1.png is PNG, which Image Basic does not allow."});
}

TEST_F(ContentClassTest, AnMp3SoundBreaksEveryClassAndAnAmrOneFitsImageBasic) {
    clsSlide& slide = slideWithPicture(picture("s.jpg", {100, 75}));
    setSound(slide, sound("speech.wav", 8000, 2, {"-c:a", "pcm_s16le"}), "A1.wav");
    const auto amr = check();
    EXPECT_EQ(amr.smallest, ContentClass::ImageBasic) << texts(amr.broken).join('\n').toStdString();
    ASSERT_EQ(amr.parts.size(), 3);
    EXPECT_EQ(amr.parts[2].facts.kind, F::AmrNb);
    EXPECT_EQ(amr.parts[2].facts.durationMs, 2000);

    setSound(slide, sound("song.mp3", 44100, 2, {"-c:a", "libmp3lame"}), "A2.mp3");
    const auto mp3 = check(ContentClass::VideoRich);
    EXPECT_FALSE(mp3.smallest.has_value());
    EXPECT_EQ(texts(mp3.broken),
              QStringList{"Slide1.mp3: Slide1.mp3 is MP3, which Video Rich does not allow."});
}

TEST_F(ContentClassTest, AProgressiveJpegBreaksTheClassesABaselineOneFits) {
    const QString baseline = picture("b.jpg", {160, 120});
    const QString progressive = picture("p.jpg", {160, 120}, {"-interlace", "JPEG"});
    EXPECT_EQ(partsChecker({{"b.jpg", baseline}}).smallestClass(), ContentClass::ImageBasic);
    const ContentClassChecker checker = partsChecker({{"p.jpg", progressive}});
    EXPECT_FALSE(checker.smallestClass().has_value());
    EXPECT_EQ(texts(checker.brokenRules(ContentClass::ImageRich)),
              QStringList{"p.jpg: p.jpg is progressive JPEG, which Image Rich does not allow."});
}

TEST_F(ContentClassTest, AMessageExactlyAtTheLimitFitsAndOneByteMoreDoesNot) {
    clsSlide& slide = m_message->Slides().Add();
    slide.setDuration(1000);
    const qint64 limit = ContentClass::limits(ContentClass::Text).maxBytes;
    slide.setText(QString(20000, 'a'));
    const qint64 start = check(ContentClass::Text).bytes;
    slide.setText(QString(20000 + int(limit - start), 'a'));
    const auto atLimit = check(ContentClass::Text);
    EXPECT_EQ(atLimit.bytes, limit);
    EXPECT_EQ(atLimit.smallest, ContentClass::Text);
    EXPECT_TRUE(atLimit.fits());

    slide.setText(slide.Text() + 'a');
    const auto over = check(ContentClass::Text);
    EXPECT_EQ(over.bytes, limit + 1);
    EXPECT_EQ(over.smallest, ContentClass::ImageRich);
    EXPECT_EQ(texts(over.broken),
              QStringList{": The message is 30721 bytes; Text allows at most 30720 bytes."});
}

TEST_F(ContentClassTest, LyingNamesDamageAndEmptyPartsAreReportedNotTrusted) {
    const QString png = picture("real.png", {40, 30});
    const QString jpeg = picture("whole.jpg", {40, 30});
    const QString cut = dataFile("cut.jpg");
    TempDataHome::writeFile(cut, bytesOf(jpeg).left(bytesOf(jpeg).size() / 2));
    const QString text = dataFile("words.txt");
    TempDataHome::writeFile(text, "not a sound at all\r\n");
    const QString empty = dataFile("empty.gif");
    TempDataHome::writeFile(empty, QByteArray());
    const QString amr = dataFile("cut.amr");
    TempDataHome::writeFile(amr, QByteArray("#!AMR\n") + QByteArray::fromHex("3c") +
                                     QByteArray(10, '\x11'));

    const ContentClassChecker checker = partsChecker({{"photo.jpg", png},
                                                      {"cut.jpg", cut},
                                                      {"voice.amr", text},
                                                      {"e.gif", empty},
                                                      {"short.amr", amr}});
    EXPECT_EQ(checker.parts()[0].facts.kind, F::Png);
    EXPECT_EQ(checker.parts()[2].facts.kind, F::TextAscii);
    EXPECT_EQ(texts(checker.brokenRules(ContentClass::ImageRich)),
              (QStringList{"photo.jpg: photo.jpg holds PNG, not what its name says.",
                           "cut.jpg: cut.jpg is cut short: its baseline JPEG data ends early.",
                           "voice.amr: voice.amr holds ASCII text, not what its name says.",
                           "e.gif: e.gif is empty.",
                           "short.amr: short.amr is cut short: its AMR-NB data ends early."}));
    EXPECT_FALSE(checker.smallestClass().has_value());
}

TEST_F(ContentClassTest, ATextSoundInAMessageIsSentAsItIsAndReported) {
    clsSlide& slide = m_message->Slides().Add();
    slide.setDuration(2000);
    TempDataHome::writeFile(m_work + "A1.amr", "hello, I am text\r\n");
    slide.setSound("A1.amr");
    const auto report = check();
    EXPECT_FALSE(report.fits());
    EXPECT_EQ(texts(report.broken),
              QStringList{"Slide1.amr: Slide1.amr holds ASCII text, not what its name says."});
}

TEST_F(ContentClassTest, ClassesWithoutKnownLimitsAreNeverPromised) {
    slideWithPicture(picture("tiny.jpg", {16, 12}));
    const auto report = check(ContentClass::Megapixel);
    EXPECT_EQ(report.smallest, ContentClass::ImageBasic);
    EXPECT_FALSE(report.fits());
    EXPECT_EQ(ContentClass::fromName("image rich"), ContentClass::ImageRich);
    EXPECT_EQ(ContentClass::fromName("VideoBasic"), ContentClass::VideoBasic);
    EXPECT_FALSE(ContentClass::fromName("Image").has_value());
}

TEST_F(ContentClassTest, AFileIsJudgedByItselfBeforeItIsAdded) {
    const QString tune = sound("tune.mp3", 22050, 1, {"-c:a", "libmp3lame"});
    EXPECT_EQ(texts(ContentClassChecker::fileRules(tune, "tune.mp3", ContentClass::ImageRich)),
              QStringList{"tune.mp3: tune.mp3 is MP3, which Image Rich does not allow."});
    const QString gif = picture("anim.gif", {200, 100});
    EXPECT_EQ(
        texts(ContentClassChecker::fileRules(gif, "anim.gif", ContentClass::ImageBasic)),
        QStringList{"anim.gif: anim.gif is 200x100 pixels; Image Basic allows at most 160x120."});
    EXPECT_TRUE(ContentClassChecker::fileRules(gif, "anim.gif", ContentClass::ImageRich).isEmpty());
}

TEST_F(ContentClassTest, TheShippedSettingsChooseImageRichInWarningMode) {
    EXPECT_EQ(ContentClassChecker::classFromSettings(), ContentClass::ImageRich);
    EXPECT_EQ(ContentClass::creationModeFromSettings(), ContentClass::CreationMode::Warning);
    AppGlobals::settings()->SetProp("preferences", "ContentClass", "Video Basic");
    AppGlobals::settings()->SetProp("preferences", "CreationMode", "restricted");
    EXPECT_EQ(ContentClassChecker::classFromSettings(), ContentClass::VideoBasic);
    EXPECT_EQ(ContentClass::creationModeFromSettings(), ContentClass::CreationMode::Restricted);
}
