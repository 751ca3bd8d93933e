#include "SoundAttacher.h"
#include "AmrConverter.h"
#include "AppGlobals.h"
#include "DialogService.h"
#include "FakeClock.h"
#include "Mci.h"
#include "MessageDocument.h"
#include "NullAudioBackend.h"
#include "ProgramRun.h"
#include "SettingsBootstrap.h"
#include "TempDataHome.h"
#include "clsMMSManager.h"
#include "clsMessage.h"
#include "clsPropertiesXML.h"
#include "clsXMLocalizer.h"
#include "modPlaySound.h"

#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSignalSpy>
#include <cmath>
#include <numbers>
#include <sys/stat.h>

namespace {
// A RIFF WAVE file of a 440 Hz tone, header written field by field.
QByteArray wavFile(int rate, int channels, int bits, int ms) {
    const int frames = rate * ms / 1000;
    QByteArray samples;
    QDataStream data(&samples, QIODevice::WriteOnly);
    data.setByteOrder(QDataStream::LittleEndian);
    for (int i = 0; i < frames; ++i) {
        const double value = 9000 * std::sin(2 * std::numbers::pi * 440 * i / rate);
        for (int channel = 0; channel < channels; ++channel) {
            if (bits == 16)
                data << qint16(value);
            else
                data << quint8(128 + int(value) / 256);
        }
    }
    const int blockAlign = channels * bits / 8;
    QByteArray file;
    QDataStream out(&file, QIODevice::WriteOnly);
    out.setByteOrder(QDataStream::LittleEndian);
    out.writeRawData("RIFF", 4);
    out << quint32(36 + samples.size());
    out.writeRawData("WAVEfmt ", 8);
    out << quint32(16) << quint16(1) << quint16(channels) << quint32(rate)
        << quint32(rate * blockAlign) << quint16(blockAlign) << quint16(bits);
    out.writeRawData("data", 4);
    out << quint32(samples.size());
    out.writeRawData(samples.constData(), int(samples.size()));
    return file;
}

const QString kAskText = "The format of this sound file is unknown, or the file cannot be read.\n\n"
                         "A message with this sound may not play on every phone.\n\n"
                         "File: %1\n\n"
                         "Add this sound to the slide anyway?";
} // namespace

// Sounds given to the current slide as the window gives them, from real files
// on disk, with the boxes answered ahead.
class SoundAttacherTest : public TempDataHome {
protected:
    void SetUp() override {
        TempDataHome::SetUp();
        Mci::install(&m_mci);
        AppGlobals::installSettings(SettingsBootstrap::openAndPrepare());
        speak("en-us");
        m_manager.InitializeAt(m_root.path() + "/work", m_root.path() + "/archive", "message.xml");
        m_document.newMessage();
        m_in = m_root.path() + "/in";
        ASSERT_TRUE(QDir().mkpath(m_in));
    }
    void TearDown() override {
        DialogService::clear();
        Mci::install(nullptr);
        TempDataHome::TearDown();
    }

    static void speak(const QString& language) {
        auto localizer = std::make_unique<clsXMLocalizer>(*AppGlobals::settings());
        ASSERT_TRUE(localizer->SetLanguage(language));
        AppGlobals::installLocalizer(std::move(localizer));
    }
    clsSlide& slide() const {
        return m_document.message()->Slides().Item(m_document.currentSlide());
    }
    QByteArray xml() const { return m_document.message()->DocumentXml(); }
    QString work(const QString& name) const { return m_manager.GetWorkFolderPath() + name; }
    QStringList workFiles() const { return QDir(work("")).entryList(QDir::Files, QDir::Name); }
    QString in(const QString& name) const { return m_in + "/" + name; }
    QString sounds() const { return programFile("archive/Sounds"); }
    static QString sample(const QString& name) {
        return QStringLiteral(VELLUMO_SOURCE_DIR "/tests/data/audio/") + name;
    }
    static void setting(const char* key, const QString& value) {
        AppGlobals::settings()->SetProp("preferences", key, value);
    }
    static QByteArray bytes(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    // The work folder holds what it held before and the slide's new sound.
    void expectOneFileAdded(const QStringList& before) const {
        QStringList expected = before;
        expected << slide().Sound();
        expected.sort();
        EXPECT_EQ(workFiles(), expected);
    }
    // file was attached as a copy of itself, lasting length ms.
    void expectKeptAsWav(const QString& file, const QByteArray& content, qint64 length) {
        SCOPED_TRACE(file.toStdString());
        const QStringList before = workFiles();
        ASSERT_TRUE(m_attacher.attach(m_in, file));
        EXPECT_TRUE(slide().Sound().endsWith(".wav")) << slide().Sound().toStdString();
        EXPECT_EQ(bytes(work(slide().Sound())), content);
        expectOneFileAdded(before);
        EXPECT_EQ(slide().SoundName(), QFileInfo(file).completeBaseName());
        EXPECT_EQ(slide().SoundDuration(), length);
        EXPECT_EQ(slide().Duration(), length);
    }
    // A box the test does not expect is answered No at once rather than
    // waiting for a user; the test then finds it among the answered ones.
    static void refuseUnexpectedBoxes() {
        for (int i = 0; i < 16; ++i)
            DialogService::queueAnswer(QMessageBox::No);
    }
    // Attaching was refused or failed: no change, no step, no file left.
    void expectUnchanged(const QByteArray& xmlBefore, const QStringList& filesBefore,
                         int stepsBefore) {
        EXPECT_EQ(xml(), xmlBefore);
        EXPECT_EQ(workFiles(), filesBefore);
        EXPECT_EQ(m_document.undoStack().count(), stepsBefore);
    }

    NullAudioBackend m_backend;
    Mci m_mci{m_backend};
    clsMMSManager m_manager;
    MessageDocument m_document{m_manager};
    SoundAttacher m_attacher{m_document, nullptr};
    QString m_in;
};

TEST_F(SoundAttacherTest, AnEightKilohertzWavBecomesAnAmrOfTheSameLength) {
    refuseUnexpectedBoxes();
    const QStringList before = workFiles();
    QSignalSpy slidesChanged(&m_document, &MessageDocument::slidesChanged);
    ASSERT_TRUE(m_attacher.attach(sounds(), "chime.wav"));

    const QString name = slide().Sound();
    EXPECT_TRUE(name.startsWith("A")) << name.toStdString();
    EXPECT_TRUE(name.endsWith(".amr")) << name.toStdString();
    expectOneFileAdded(before);
    EXPECT_TRUE(bytes(work(name)).startsWith("#!AMR\n"));
    // 12800 samples are 80 whole frames of 20 ms.
    EXPECT_EQ(m_manager.soundLength(work(name)), 1600);
    EXPECT_EQ(slide().SoundName(), "chime");
    EXPECT_EQ(slide().SoundDuration(), 1600);
    EXPECT_EQ(slide().Duration(), 1600);

    EXPECT_EQ(m_document.undoStack().count(), 1);
    EXPECT_EQ(m_document.undoStack().text(0), "Sounds");
    EXPECT_TRUE(m_document.isModified());
    EXPECT_GE(slidesChanged.count(), 1) << "the strip redraws the thumbnail";
    EXPECT_TRUE(DialogService::answeredBoxes().isEmpty());
}

TEST_F(SoundAttacherTest, WavsStayWavWhenConversionIsOffOrCannotApply) {
    refuseUnexpectedBoxes();
    const QByteArray voice = wavFile(8000, 1, 16, 1250);
    writeFile(in("voice.wav"), voice);
    setting("ConvertWavToAmr", "0");
    expectKeptAsWav("voice.wav", voice, 1250);
    setting("ConvertWavToAmr", "1");
    ASSERT_TRUE(m_attacher.attach(m_in, "voice.wav"));
    EXPECT_TRUE(slide().Sound().endsWith(".amr")) << "the same file, converted when allowed";

    const QByteArray wide = wavFile(22050, 2, 16, 900);
    const QByteArray coarse = wavFile(8000, 1, 8, 700);
    const QByteArray stereo = wavFile(8000, 2, 16, 500);
    writeFile(in("wide.WAV"), wide);
    writeFile(in("coarse.wav"), coarse);
    writeFile(in("stereo.wav"), stereo);
    expectKeptAsWav("wide.WAV", wide, 900);
    expectKeptAsWav("coarse.wav", coarse, 700);
    // The information does not tell two channels: the encoder is tried and refuses.
    ASSERT_EQ(modPlaySound::GetSoundInfo(in("stereo.wav")), "WAV;500;8000;16");
    expectKeptAsWav("stereo.wav", stereo, 500);

    EXPECT_EQ(m_document.undoStack().count(), 5);
    EXPECT_TRUE(DialogService::answeredBoxes().isEmpty());
}

TEST_F(SoundAttacherTest, TheStepAndTheBoxesSpeakTheUsersLanguage) {
    speak("de-de");
    writeFile(in("noise.mp3"), "no mpeg audio");
    ASSERT_TRUE(m_attacher.attach(sounds(), "chime.wav"));
    EXPECT_EQ(m_document.undoStack().text(0), QString::fromUtf8("Klänge"));

    DialogService::queueAnswer(QMessageBox::No);
    EXPECT_FALSE(m_attacher.attach(m_in, "noise.mp3"));
    DialogService::queueAnswer(QMessageBox::Ok);
    EXPECT_FALSE(m_attacher.attach(m_in, "gone.mp3"));
    const QList<DialogService::ShownBox> boxes = DialogService::answeredBoxes();
    ASSERT_EQ(boxes.size(), 2);
    EXPECT_EQ(boxes[0].text,
              QString::fromUtf8("Das Format dieser Klangdatei ist unbekannt, oder die Datei kann "
                                "nicht gelesen werden.\n\n"
                                "Eine Nachricht mit diesem Klang wird eventuell nicht auf jedem "
                                "Telefon abgespielt.\n\n"
                                "Datei: %1\n\n"
                                "Den Klang trotzdem zur Folie hinzufügen?")
                  .arg(in("noise.mp3")));
    EXPECT_EQ(boxes[1].text, "Die Datei wurde nicht gefunden.");
}

TEST_F(SoundAttacherTest, AWavWhoseNameHoldsAQuoteIsMeasuredAndAttached) {
    refuseUnexpectedBoxes();
    const QByteArray tone = wavFile(22050, 1, 16, 600);
    const QString file = "say \"hi.wav";
    writeFile(in(file), tone);
    ASSERT_EQ(modPlaySound::GetSoundInfo(in(file)), "WAV;600;22050;16");

    const QStringList before = workFiles();
    ASSERT_TRUE(m_attacher.attach(m_in, file));
    EXPECT_TRUE(DialogService::answeredBoxes().isEmpty()) << "measured without asking";
    EXPECT_EQ(bytes(work(slide().Sound())), tone);
    expectOneFileAdded(before);
    EXPECT_EQ(slide().SoundName(), "say \"hi");
    EXPECT_EQ(slide().Duration(), 600);
}

TEST_F(SoundAttacherTest, AmrMidiAndMp3AreTakenAsTheyAre) {
    refuseUnexpectedBoxes();
    writeFile(in("speech.wav"), wavFile(8000, 1, 16, 800));
    ASSERT_EQ(AmrConverter::wav2amr(in("speech.wav"), in("speech.amr")), AmrConverter::Ok);
    ASSERT_TRUE(QFile::copy(sample("tempo_change.mid"), in("tune.MID")));
    ASSERT_TRUE(QFile::copy(sample("tempo_change.mid"), in("long.midi")));
    ASSERT_TRUE(QFile::copy(sample("tempo_change.mid"), in("short.mi")));
    ASSERT_TRUE(QFile::copy(sounds() + "/arpeggio.mp3", in("arpeggio.mp3")));
    const qint64 mp3Length =
        modPlaySound::GetSoundInfo(in("arpeggio.mp3")).section(';', 1, 1).toLongLong();
    ASSERT_GT(mp3Length, 0);

    struct Case {
        const char* file;
        const char* extension;
        qint64 length;
    };
    // The AMR's length comes from decoding it: 6400 samples, 40 frames.
    const QList<Case> cases{{"speech.amr", ".amr", 800},
                            {"tune.MID", ".mid", 1750},
                            {"long.midi", ".mid", 1750},
                            {"short.mi", ".mi", 1750},
                            {"arpeggio.mp3", ".mp3", mp3Length}};
    for (const Case& each : cases) {
        SCOPED_TRACE(each.file);
        const QStringList before = workFiles();
        ASSERT_TRUE(m_attacher.attach(m_in, each.file));
        const QString name = slide().Sound();
        EXPECT_TRUE(name.startsWith("A")) << name.toStdString();
        EXPECT_TRUE(name.endsWith(each.extension)) << name.toStdString();
        EXPECT_EQ(bytes(work(name)), bytes(in(each.file)));
        expectOneFileAdded(before);
        EXPECT_EQ(slide().SoundName(), QFileInfo(each.file).completeBaseName());
        EXPECT_EQ(slide().SoundDuration(), each.length);
        EXPECT_EQ(slide().Duration(), each.length);
    }
    EXPECT_EQ(m_document.undoStack().count(), int(cases.size()));
    EXPECT_TRUE(DialogService::answeredBoxes().isEmpty());
}

TEST_F(SoundAttacherTest, AnUnreadableSoundIsAttachedOnlyWhenTheUserSaysYes) {
    writeFile(in("noise.mp3"), "this is no mpeg audio at all");
    ASSERT_TRUE(m_attacher.attach(sounds(), "chime.wav"));
    ASSERT_EQ(slide().SoundDuration(), 1600);
    m_document.setSlideDuration(4200);
    const QByteArray xmlBefore = xml();
    const QStringList filesBefore = workFiles();

    DialogService::queueAnswer(QMessageBox::No);
    EXPECT_FALSE(m_attacher.attach(m_in, "noise.mp3"));
    expectUnchanged(xmlBefore, filesBefore, 2);
    ASSERT_EQ(DialogService::answeredBoxes().size(), 1);
    const DialogService::ShownBox box = DialogService::answeredBoxes()[0];
    EXPECT_EQ(box.title, "Vellumo");
    EXPECT_EQ(box.icon, QMessageBox::Information);
    EXPECT_EQ(box.text, kAskText.arg(in("noise.mp3")));

    DialogService::queueAnswer(QMessageBox::Yes);
    ASSERT_TRUE(m_attacher.attach(m_in, "noise.mp3"));
    EXPECT_EQ(DialogService::answeredBoxes().size(), 2);
    EXPECT_TRUE(slide().Sound().endsWith(".mp3")) << slide().Sound().toStdString();
    EXPECT_EQ(bytes(work(slide().Sound())), "this is no mpeg audio at all");
    expectOneFileAdded(filesBefore);
    EXPECT_EQ(slide().SoundName(), "noise");
    EXPECT_EQ(slide().SoundDuration(), 0) << "no length was read, not the chime's kept";
    EXPECT_EQ(slide().Duration(), 4200) << "the slide keeps its time";
    EXPECT_EQ(m_document.undoStack().count(), 3);
}

TEST_F(SoundAttacherTest, EveryDoubtfulKindAsksAndNoLeavesNothingBehind) {
    writeFile(in("notes.txt"), "a shopping list\n");
    writeFile(in("bare"), "no extension");
    // A WAV is copied in before it is judged; its copy must go again.
    writeFile(in("broken.wav"), QByteArray("RIFF\x10\0\0\0WAVEjunkjunk", 20));
    ASSERT_TRUE(QFile::copy(sample("melody.imy"), in("melody.imy")));
    // Three seconds of 8 kHz speech cut off after one: it would go to AMR unasked.
    const QByteArray speech = wavFile(8000, 1, 16, 3000);
    writeFile(in("cut.wav"), speech.left(16044));
    // A MIDI header that announces one track and brings none.
    writeFile(in("empty.mid"), QByteArray("MThd\0\0\0\x06\0\0\0\x01\0\x60", 14));
    writeFile(in("text.mp3"), "ID3? no: a letter saved under the wrong name\n");
    const QByteArray xmlBefore = xml();
    const QStringList filesBefore = workFiles();

    const QStringList files{"notes.txt", "bare",      "broken.wav", "melody.imy",
                            "cut.wav",   "empty.mid", "text.mp3"};
    for (const QString& file : files) {
        SCOPED_TRACE(file.toStdString());
        DialogService::queueAnswer(QMessageBox::No);
        EXPECT_FALSE(m_attacher.attach(m_in, file));
        expectUnchanged(xmlBefore, filesBefore, 0);
        EXPECT_EQ(DialogService::answeredBoxes().last().text, kAskText.arg(in(file)));
    }
    EXPECT_EQ(DialogService::answeredBoxes().size(), files.size());

    DialogService::queueAnswer(QMessageBox::Yes);
    ASSERT_TRUE(m_attacher.attach(m_in, "broken.wav"));
    EXPECT_TRUE(slide().Sound().endsWith(".wav"));
    EXPECT_EQ(bytes(work(slide().Sound())), bytes(in("broken.wav")));
    expectOneFileAdded(filesBefore);

    DialogService::queueAnswer(QMessageBox::Yes);
    ASSERT_TRUE(m_attacher.attach(m_in, "melody.imy"));
    EXPECT_TRUE(slide().Sound().endsWith(".imy"));
    EXPECT_EQ(slide().SoundName(), "melody");
    EXPECT_EQ(DialogService::answeredBoxes().size(), files.size() + 2);
}

TEST_F(SoundAttacherTest, TheSavedMessageTellsEachSoundsKindAndLength) {
    refuseUnexpectedBoxes();
    setting("ConvertWavToAmr", "1");
    writeFile(in("low.wav"), wavFile(11025, 1, 16, 900));
    writeFile(in("speech.wav"), wavFile(8000, 1, 16, 1250));
    writeFile(in("tune.xm"), "a tracker module, a kind no phone plays");
    ASSERT_TRUE(m_attacher.attach(m_in, "low.wav"));
    ASSERT_TRUE(m_document.appendSlide());
    ASSERT_TRUE(m_attacher.attach(m_in, "speech.wav"));
    ASSERT_TRUE(m_document.appendSlide());
    ASSERT_TRUE(m_document.setSlideDuration(2500));
    ASSERT_TRUE(DialogService::answeredBoxes().isEmpty());
    DialogService::clear();
    DialogService::queueAnswer(QMessageBox::Yes);
    ASSERT_TRUE(m_attacher.attach(m_in, "tune.xm"));

    const QString file = m_root.path() + "/sounds.mms";
    ASSERT_TRUE(m_document.saveMessage(file));
    const ProgramRun info = runProgram(cliProgram(), {"info", file});
    ASSERT_EQ(info.code, 0) << info.err.toStdString();
    const QStringList expected{
        R"(slide 1: duration 900 ms)",  R"(  sound: A\w+\.wav "low" 900 ms)",
        R"(slide 2: duration 1250 ms)", R"(  sound: A\w+\.amr "speech" 1250 ms)",
        R"(slide 3: duration 2500 ms)", R"(  sound: A\w+\.xm "tune" 0 ms)"};
    for (const QString& line : expected)
        EXPECT_TRUE(info.out.contains(QRegularExpression("(^|\n)" + line + "[,\n]")))
            << line.toStdString() << "\n"
            << info.out.toStdString();
}

TEST_F(SoundAttacherTest, AMissingFileOrNoFileAtAllIsReportedAndChangesNothing) {
    ASSERT_TRUE(QDir().mkpath(in("folder.wav")));
    ASSERT_EQ(::mkfifo(QFile::encodeName(in("pipe.wav")).constData(), 0600), 0);
    ASSERT_TRUE(QFile::link(in("gone.wav"), in("dangling.wav")));
    ASSERT_TRUE(QFile::link(in("folder.wav"), in("tofolder.wav")));
    ASSERT_TRUE(QFile::link("/dev/zero", in("zero.wav")));
    ASSERT_TRUE(QFile::link(in("loop2.wav"), in("loop1.wav")));
    ASSERT_TRUE(QFile::link(in("loop1.wav"), in("loop2.wav")));
    const QByteArray xmlBefore = xml();
    const QStringList filesBefore = workFiles();

    const QStringList files{"gone.wav",     "folder.wav", "pipe.wav", "dangling.wav",
                            "tofolder.wav", "zero.wav",   "loop1.wav"};
    for (const QString& file : files) {
        SCOPED_TRACE(file.toStdString());
        DialogService::queueAnswer(QMessageBox::Ok);
        EXPECT_FALSE(m_attacher.attach(m_in, file));
        expectUnchanged(xmlBefore, filesBefore, 0);
        ASSERT_FALSE(DialogService::answeredBoxes().isEmpty());
        const DialogService::ShownBox box = DialogService::answeredBoxes().last();
        // Stops at the first wrong one: a pipe taken for a file would block the run.
        ASSERT_EQ(box.text, "The file cannot be found.");
        EXPECT_EQ(box.title, "Vellumo");
        EXPECT_EQ(box.icon, QMessageBox::Warning);
    }
    EXPECT_EQ(DialogService::answeredBoxes().size(), files.size());
}

TEST_F(SoundAttacherTest, ALinkToASoundFileIsFollowed) {
    refuseUnexpectedBoxes();
    const QByteArray tone = wavFile(22050, 1, 16, 300);
    writeFile(in("real.wav"), tone);
    ASSERT_TRUE(QFile::link(in("real.wav"), in("shortcut.wav")));
    ASSERT_TRUE(m_attacher.attach(m_in, "shortcut.wav"));
    EXPECT_EQ(bytes(work(slide().Sound())), tone);
    EXPECT_FALSE(QFileInfo(work(slide().Sound())).isSymLink());
    EXPECT_EQ(slide().SoundName(), "shortcut");
    EXPECT_EQ(slide().Duration(), 300);
    EXPECT_TRUE(DialogService::answeredBoxes().isEmpty());
}

TEST_F(SoundAttacherTest, UndoPutsTheSlideBackExactly) {
    refuseUnexpectedBoxes();
    ASSERT_TRUE(m_attacher.attach(sounds(), "chime.wav"));
    const QString first = slide().Sound();
    m_document.setSlideText("with a chime");
    const QByteArray withChime = xml();
    const QStringList filesWithChime = workFiles();

    ASSERT_TRUE(m_attacher.attach(sounds(), "arpeggio.mp3"));
    const QString second = slide().Sound();
    const QByteArray withArpeggio = xml();
    ASSERT_NE(withArpeggio, withChime);
    EXPECT_TRUE(QFileInfo::exists(work(first))) << "the step before still needs it";

    m_document.undoStack().undo();
    EXPECT_EQ(xml(), withChime);
    EXPECT_EQ(slide().Sound(), first);
    EXPECT_EQ(slide().Duration(), 1600);
    m_document.undoStack().redo();
    EXPECT_EQ(xml(), withArpeggio);
    EXPECT_EQ(slide().Sound(), second);

    m_document.undoStack().undo();
    m_document.undoStack().undo();
    m_document.undoStack().undo();
    EXPECT_EQ(slide().Sound(), "");
    EXPECT_EQ(slide().Duration(), m_document.message()->DefaultDuration());
    EXPECT_FALSE(m_document.isModified());
    QStringList expected = filesWithChime;
    expected << second;
    expected.sort();
    EXPECT_EQ(workFiles(), expected) << "a step may be redone: its files stay";
    EXPECT_TRUE(DialogService::answeredBoxes().isEmpty());
}

TEST_F(SoundAttacherTest, ASoundFromTheWorkFolderIsCopiedUnderAFreshName) {
    refuseUnexpectedBoxes();
    const QByteArray tone = wavFile(22050, 1, 16, 400);
    writeFile(in("tone.wav"), tone);
    ASSERT_TRUE(m_attacher.attach(m_in, "tone.wav"));
    const QString first = slide().Sound();

    ASSERT_TRUE(m_attacher.attach(m_manager.GetWorkFolderPath(), first));
    const QString second = slide().Sound();
    EXPECT_NE(second, first);
    EXPECT_EQ(bytes(work(first)), tone);
    EXPECT_EQ(bytes(work(second)), tone);
    EXPECT_EQ(slide().SoundName(), QFileInfo(first).completeBaseName());
    EXPECT_EQ(workFiles().size(), 2);

    m_document.undoStack().undo();
    EXPECT_EQ(slide().Sound(), first);
    EXPECT_TRUE(DialogService::answeredBoxes().isEmpty());
}

TEST_F(SoundAttacherTest, AFileAlreadyInTheWorkFolderIsNeverWrittenOver) {
    refuseUnexpectedBoxes();
    // A clock that moves one millisecond a reading makes the names foreseeable;
    // the next few are taken already, as by a message made at another time.
    FakeClock clock(500000, QDateTime(QDate(2026, 3, 4), QTime(12, 0)));
    clock.setStepEvery(1);
    ScopedClock installed(clock);
    QStringList taken;
    for (int tick = 500000; tick <= 500008; ++tick) {
        taken << QString("A260304_%1.wav").arg(tick);
        writeFile(work(taken.last()), "belongs to another step");
    }
    writeFile(in("tone.wav"), wavFile(22050, 1, 16, 200));

    ASSERT_TRUE(m_attacher.attach(m_in, "tone.wav"));
    EXPECT_FALSE(taken.contains(slide().Sound())) << slide().Sound().toStdString();
    EXPECT_TRUE(slide().Sound().startsWith("A260304_")) << slide().Sound().toStdString();
    for (const QString& name : taken)
        EXPECT_EQ(bytes(work(name)), "belongs to another step") << name.toStdString();
    EXPECT_EQ(bytes(work(slide().Sound())), bytes(in("tone.wav")));
    EXPECT_TRUE(DialogService::answeredBoxes().isEmpty());
}
