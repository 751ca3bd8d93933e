#include "MessageDocument.h"
#include "AppGlobals.h"
#include "ProgramRun.h"
#include "SettingsBootstrap.h"
#include "TempDataHome.h"
#include "clsMMSManager.h"
#include "clsMessage.h"
#include "clsPropertiesXML.h"

#include <QFile>
#include <QFileInfo>
#include <QProcessEnvironment>
#include <QSignalSpy>
#include <algorithm>
#include <random>
#include <set>
#include <vector>

// The open message with its edit history, driven the way the window drives it.
class MessageDocumentTest : public TempDataHome {
protected:
    void SetUp() override {
        TempDataHome::SetUp();
        AppGlobals::installSettings(SettingsBootstrap::openAndPrepare());
        m_manager.InitializeAt(m_root.path() + "/work", m_root.path() + "/archive", "message.xml");
        m_document.newMessage();
    }

    clsMessage& message() const { return *m_document.message(); }
    clsSlide& slide(int index) const { return message().Slides().Item(index); }
    QByteArray xml() const { return message().DocumentXml(); }
    QString work(const QString& name) const { return m_manager.GetWorkFolderPath() + name; }
    QStringList texts() const {
        QStringList all;
        for (const auto& each : message().Slides())
            all << each->Text();
        return all;
    }

    // A file of the shipped archive copied into the work folder as name.
    void bring(const QString& archived, const QString& name) const {
        ASSERT_TRUE(QFile::copy(programFile("archive/" + archived), work(name)));
    }

    // Three slides with a sound, a background picture, a picture object and
    // texts, saved and opened again, so the history starts clean.
    void openSample() {
        bring("Sounds/chime.wav", "A_chime.wav");
        bring("Backgrounds/sky_gradient.jpg", "B_sky.jpg");
        bring("Pictures/star.gif", "I_star.gif");
        clsSlides& slides = message().Slides();
        slides.Add();
        slides.Add();
        slide(1).setText("first\r\nslide");
        slide(1).setSound("A_chime.wav");
        slide(1).setSoundName("chime");
        slide(1).setSoundDuration(1600);
        slide(2).DrawObjects().setBackType(clsDrawObjects::BackStill);
        slide(2).DrawObjects().setBackPicture("B_sky.jpg");
        slide(2).DrawObjects().Add().SetAllPproperties(
            DrawObjectProperties::forImage("I_star.gif", QRect(10, 10, 40, 40), 1));
        slide(3).setText(QString::fromUtf8("drittes Blatt – ü"));
        ASSERT_TRUE(m_document.saveMessage(path("sample.mms")));
        ASSERT_TRUE(m_document.openMessage(path("sample.mms")));
        ASSERT_EQ(m_document.slideCount(), 3);
    }

    QString path(const QString& name) const { return m_root.path() + "/" + name; }

    // Every slide object wraps the element at its position, and every medium
    // a slide names is still in the work folder.
    void expectConsistent() const {
        int position = 1;
        for (const auto& each : message().Slides()) {
            EXPECT_EQ(each->index(), position);
            EXPECT_EQ(each->GetImageAttribute("url"), "Slide_" + QString::number(position));
            ++position;
        }
        for (const QString& name : message().MediaNames())
            EXPECT_TRUE(QFileInfo::exists(work(name))) << name.toStdString();
        EXPECT_GE(m_document.currentSlide(), 1);
        EXPECT_LE(m_document.currentSlide(), m_document.slideCount());
    }

    static constexpr int kEditKinds = 12;

    // Edit number kind, with random arguments.
    void randomEdit(int kind, std::mt19937& random) {
        auto pick = [&random](int low, int high) {
            return std::uniform_int_distribution<int>(low, high)(random);
        };
        const int count = m_document.slideCount();
        const int current = m_document.currentSlide();
        switch (kind) {
        case 0:
            m_document.appendSlide();
            break;
        case 1:
            m_document.insertSlideBefore(current);
            break;
        case 2:
            m_document.insertSlideAfter(current);
            break;
        case 3:
            m_document.duplicateSlideBefore(current);
            break;
        case 4:
            m_document.duplicateSlideAfter(current);
            break;
        case 5:
            m_document.deleteSlide(pick(1, count));
            break;
        case 6:
            m_document.moveSlide(pick(1, count), pick(1, count));
            break;
        case 7:
            m_document.setSlideText(QString::fromUtf8("Grüße %1\r\nline").arg(pick(0, 999)));
            break;
        case 8:
            m_document.setSlideDuration(100 * pick(1, 90));
            break;
        case 9:
            m_document.deleteSlidePicture();
            break;
        case 10:
            m_document.deleteSlideText();
            break;
        default:
            m_document.deleteSlideSound();
            break;
        }
        m_document.endFieldVisit();
    }

    clsMMSManager m_manager;
    MessageDocument m_document{m_manager};
};

TEST_F(MessageDocumentTest, RandomEditsUndoAndRedoByteForByte) {
    openSample();
    // The message after each step, the slide that was current when the step
    // was made (undo goes back there) and the one it left current.
    struct Step {
        QByteArray xml;
        int currentBefore;
        int currentAfter;
    };
    QList<Step> states{{xml(), 0, m_document.currentSlide()}};
    QUndoStack& history = m_document.undoStack();
    std::mt19937 random(20051114);
    // Every kind of edit in a shuffled deck, dealt again when it runs out.
    // Commands that change nothing (removing a text that is not there) and
    // moving between slides are no step.
    std::vector<int> deck;
    std::set<int> kindsRecorded;
    for (int tries = 0; history.count() < 30 && tries < 1000; ++tries) {
        if (deck.empty()) {
            for (int kind = 0; kind < kEditKinds; ++kind)
                deck.push_back(kind);
            std::shuffle(deck.begin(), deck.end(), random);
        }
        const int kind = deck.back();
        deck.pop_back();
        if (random() % 3 == 0)
            m_document.setCurrentSlide(int(random() % unsigned(m_document.slideCount())) + 1);
        const int before = history.count();
        const int current = m_document.currentSlide();
        randomEdit(kind, random);
        if (history.count() > before) {
            states.append({xml(), current, m_document.currentSlide()});
            kindsRecorded.insert(kind);
        }
        expectConsistent();
    }
    EXPECT_EQ(int(kindsRecorded.size()), kEditKinds) << "every command made a step";
    ASSERT_EQ(history.count(), 30);
    ASSERT_EQ(states.size(), 31);
    EXPECT_NE(states.first().xml, states.last().xml);

    for (int step = 29; step >= 0; --step) {
        history.undo();
        ASSERT_EQ(xml(), states[step].xml) << "undo to step " << step;
        EXPECT_EQ(m_document.currentSlide(), states[step + 1].currentBefore);
        expectConsistent();
    }
    EXPECT_FALSE(history.canUndo());
    EXPECT_FALSE(m_document.isModified());
    for (int step = 1; step <= 30; ++step) {
        history.redo();
        ASSERT_EQ(xml(), states[step].xml) << "redo to step " << step;
        EXPECT_EQ(m_document.currentSlide(), states[step].currentAfter);
    }
    expectConsistent();
}

TEST_F(MessageDocumentTest, UndoingBackToTheSavedStateClearsModified) {
    openSample();
    QSignalSpy modified(&m_document, &MessageDocument::modifiedChanged);
    EXPECT_FALSE(m_document.isModified());
    m_document.appendSlide();
    EXPECT_TRUE(m_document.isModified());
    ASSERT_TRUE(m_document.saveMessage(path("saved.mms")));
    EXPECT_FALSE(m_document.isModified());
    const QByteArray saved = xml();

    m_document.setSlideText("after the save");
    EXPECT_TRUE(m_document.isModified());
    m_document.undoStack().undo();
    EXPECT_EQ(xml(), saved);
    EXPECT_FALSE(m_document.isModified()) << "back where the file is";
    m_document.undoStack().undo();
    EXPECT_TRUE(m_document.isModified()) << "before the save differs from the file too";
    m_document.undoStack().redo();
    m_document.deleteSlide(1);
    EXPECT_TRUE(m_document.isModified());
    QList<bool> flags;
    for (const QList<QVariant>& signal : modified)
        flags << signal.at(0).toBool();
    EXPECT_EQ(flags, QList<bool>({true, false, true, false, true, false, true}));

    m_document.newMessage();
    EXPECT_FALSE(m_document.isModified());
    EXPECT_EQ(m_document.undoStack().count(), 0);
    EXPECT_EQ(m_document.slideCount(), 1) << "a new message has one empty slide";
}

TEST_F(MessageDocumentTest, TypingInOneFieldVisitIsOneStep) {
    openSample();
    QUndoStack& history = m_document.undoStack();
    const QString original = slide(1).Text();
    const qint64 originalDuration = slide(1).Duration();
    for (const char* typed : {"H", "He", "Hel", "Hell"})
        m_document.setSlideText(typed);
    EXPECT_EQ(history.count(), 1);
    m_document.setSlideDuration(4000);
    m_document.setSlideDuration(4500);
    EXPECT_EQ(history.count(), 2) << "another field is another step";
    m_document.setSlideText("Hello");
    m_document.endFieldVisit();
    m_document.setSlideText("Hello!");
    EXPECT_EQ(history.count(), 4);

    history.undo();
    EXPECT_EQ(slide(1).Text(), "Hello");
    history.undo();
    EXPECT_EQ(slide(1).Duration(), 4500);
    history.undo();
    EXPECT_EQ(slide(1).Duration(), originalDuration);
    history.undo();
    EXPECT_EQ(slide(1).Text(), original);

    m_document.setSlideText("typo");
    m_document.setSlideText(original);
    EXPECT_EQ(history.count(), 0) << "typed back to where it was: no step";
    m_document.setSlideText("one");
    m_document.setCurrentSlide(2);
    m_document.setSlideText("two");
    EXPECT_EQ(history.count(), 2) << "another slide is another visit";
}

TEST_F(MessageDocumentTest, DeletingTheOnlySlideEmptiesIt) {
    openSample();
    QSignalSpy current(&m_document, &MessageDocument::currentSlideChanged);
    QSignalSpy slides(&m_document, &MessageDocument::slidesChanged);
    m_document.setCurrentSlide(3);
    EXPECT_EQ(slides.size(), 0) << "moving to another slide changes none";
    ASSERT_TRUE(m_document.deleteSlide(3));
    EXPECT_EQ(m_document.slideCount(), 2);
    EXPECT_EQ(m_document.currentSlide(), 2) << "the new last slide";
    EXPECT_EQ(current.last().at(0).toInt(), 2);
    EXPECT_EQ(slides.size(), 1);

    m_document.setCurrentSlide(1);
    ASSERT_TRUE(m_document.deleteSlide(1));
    EXPECT_EQ(m_document.currentSlide(), 1);
    EXPECT_EQ(slide(1).DrawObjects().BackPicture(), "B_sky.jpg") << "the next slide moved up";

    m_document.setSlideDuration(9000);
    m_document.setSlideText("last words");
    slide(1).setSound("A_chime.wav");
    ASSERT_TRUE(m_document.deleteSlide(1));
    ASSERT_EQ(m_document.slideCount(), 1) << "never an empty message";
    EXPECT_EQ(m_document.currentSlide(), 1);
    const clsSlide& only = slide(1);
    EXPECT_EQ(only.Text(), "");
    EXPECT_EQ(only.Sound(), "");
    EXPECT_EQ(only.SoundDuration(), 0);
    EXPECT_EQ(only.Duration(), message().DefaultDuration());
    EXPECT_EQ(only.DrawObjects().BackPicture(), "");
    EXPECT_EQ(only.DrawObjects().BackType(), clsDrawObjects::BackColorOnly);
    EXPECT_EQ(only.DrawObjects().Count(), 0);
    EXPECT_TRUE(QFileInfo::exists(work("B_sky.jpg"))) << "media stay until the message closes";
    EXPECT_TRUE(QFileInfo::exists(work("I_star.gif")));
    EXPECT_FALSE(m_document.deleteSlide(2)) << "no such slide";
}

TEST_F(MessageDocumentTest, MovingASlideKeepsItsContentsAndRenumbers) {
    openSample();
    m_document.appendSlide();
    m_document.setSlideText("fourth");
    m_document.setCurrentSlide(2);
    m_document.setSlideText("second");
    const QStringList start = texts();
    ASSERT_TRUE(m_document.moveSlide(1, 3));
    EXPECT_EQ(texts(), QStringList({start[1], start[2], start[0], start[3]}));
    EXPECT_EQ(m_document.currentSlide(), 3);
    EXPECT_EQ(slide(3).Sound(), "A_chime.wav") << "the sound went along";
    EXPECT_EQ(slide(1).DrawObjects().Item(1).image(), "I_star.gif");
    ASSERT_TRUE(m_document.moveSlide(4, 1));
    EXPECT_EQ(texts(), QStringList({start[3], start[1], start[2], start[0]}));
    EXPECT_EQ(slide(4).SlideFileName(), "Slide_4.bmp");
    expectConsistent();
    m_document.undoStack().undo();
    m_document.undoStack().undo();
    EXPECT_EQ(texts(), start);
    EXPECT_EQ(m_document.currentSlide(), 2) << "where it was before the first move";
    EXPECT_FALSE(m_document.moveSlide(1, 5));
}

TEST_F(MessageDocumentTest, DuplicatesCopyMediaUnderNewNames) {
    openSample();
    m_document.setCurrentSlide(2);
    ASSERT_TRUE(m_document.duplicateSlideBefore(2));
    EXPECT_EQ(m_document.currentSlide(), 2);
    const QString copied = slide(2).DrawObjects().BackPicture();
    EXPECT_NE(copied, "B_sky.jpg");
    EXPECT_TRUE(QFileInfo::exists(work(copied)));
    EXPECT_EQ(slide(3).DrawObjects().BackPicture(), "B_sky.jpg");
    m_document.undoStack().undo();
    EXPECT_EQ(m_document.slideCount(), 3);
    EXPECT_TRUE(QFileInfo::exists(work(copied))) << "redo needs it again";
    m_document.undoStack().redo();
    EXPECT_EQ(slide(2).DrawObjects().BackPicture(), copied);
    ASSERT_TRUE(m_document.duplicateSlideAfter(1));
    EXPECT_EQ(m_document.currentSlide(), 2);
    EXPECT_EQ(slide(2).Text(), slide(1).Text());
    EXPECT_NE(slide(2).Sound(), slide(1).Sound());
}

TEST_F(MessageDocumentTest, ASavedMessageReadsBackInTheCommandLineTool) {
    openSample();
    m_document.insertSlideAfter(1);
    m_document.setSlideText("inserted");
    m_document.setSlideDuration(2500);
    m_document.deleteSlide(4);
    ASSERT_TRUE(m_document.saveMessage(path("edited.mms")));

    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("XDG_DATA_HOME", path("cli-data"));
    const ProgramRun cli = runProgram(cliProgram(), {"info", path("edited.mms")}, env);
    const QString out = cli.out;
    ASSERT_EQ(cli.code, 0) << cli.err.toStdString();
    EXPECT_TRUE(out.contains("slides: 3\n")) << out.toStdString();
    EXPECT_TRUE(out.contains("slide 2: duration 2500 ms, file Slide_2.bmp"));
    EXPECT_TRUE(out.contains("  text: \"first\\nslide\""));
    EXPECT_TRUE(out.contains("  text: \"inserted\""));
    EXPECT_TRUE(out.contains("slide 3: duration"));
    EXPECT_FALSE(out.contains("drittes")) << "the deleted slide is gone";
}

TEST_F(MessageDocumentTest, AForeignDocumentIsRefusedWhole) {
    openSample();
    const QByteArray before = xml();
    EXPECT_FALSE(message().ReplaceDocument("<ROOT><unclosed></ROOT>"));
    EXPECT_FALSE(message().ReplaceDocument("<OTHER/>"));
    EXPECT_EQ(xml(), before);
    EXPECT_EQ(m_document.slideCount(), 3);
    ASSERT_TRUE(message().ReplaceDocument(before));
    EXPECT_EQ(xml(), before);
    EXPECT_EQ(slide(3).Text(), QString::fromUtf8("drittes Blatt – ü"));
}
