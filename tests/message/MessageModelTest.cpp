#include "FakeClock.h"
#include "SlideRenderer.h"
#include "TempDataHome.h"
#include "clsMessage.h"

#include <QDir>
#include <QFile>
#include <QImage>

class MessageModelTest : public TempDataHome {
protected:
    void SetUp() override {
        TempDataHome::SetUp();
        m_work = dataFile("work/");
        QDir().mkpath(m_work);
    }
    clsMessage& fresh() {
        m_message.Initialize("", "greeting", m_work);
        m_message.setDefaultDuration(3000);
        return m_message;
    }
    QString m_work;
    clsMessage m_message;
};

TEST_F(MessageModelTest, ANewMessageIsTheSkeletonWithAnEmptySlideList) {
    clsMessage& message = fresh();
    EXPECT_EQ(message.version(), "2.0");
    EXPECT_EQ(message.name(), "greeting");
    EXPECT_EQ(message.Slides().Count(), 0);
    EXPECT_TRUE(message.isChanged());
    message.setMMSFileList("mms.smil;a.jpg");
    ASSERT_TRUE(message.SaveMessage(dataFile("m.xml")));
    const QString xml = readFile(dataFile("m.xml"));
    EXPECT_TRUE(xml.startsWith("<?xml version=\"1.0\" encoding=\"utf-8\"?>"));
    const qsizetype header = xml.indexOf("<HEADER>"), mms = xml.indexOf("<MMS>"),
                    body = xml.indexOf("<MESSAGE name=\"greeting\">");
    EXPECT_TRUE(header > 0 && header < mms && mms < body) << xml.toStdString();
    EXPECT_TRUE(xml.contains("type=\"Vellumo messages\""));
    EXPECT_TRUE(xml.contains("<FILELIST>mms.smil;a.jpg</FILELIST>"));
}

TEST_F(MessageModelTest, InsertingAndRemovingRenumbersAndRenamesSlidePictures) {
    clsSlides& slides = fresh().Slides();
    for (int i = 0; i < 3; ++i)
        slides.Add().setText("slide " + QString::number(i + 1));
    clsSlide& inserted = slides.AddBefore(1);
    EXPECT_EQ(slides.Count(), 4);
    EXPECT_EQ(&slides.Item(1), &inserted);
    int expected = 1;
    for (pugi::xml_node slide :
         m_message.DOMParent().child("ROOT").child("MESSAGE").child("SLIDES").children()) {
        EXPECT_EQ(QString(slide.attribute("index").value()).toInt(), expected);
        EXPECT_EQ(QString(slide.child("IMAGE").attribute("url").value()),
                  "Slide_" + QString::number(expected));
        ++expected;
    }
    EXPECT_EQ(slides.Item(2).Text(), "slide 1");
    EXPECT_EQ(slides.AddAfter(4).index(), 5);
    EXPECT_EQ(slides.AddAfter(1).index(), 2);
    EXPECT_EQ(slides.Item(3).Text(), "slide 1");
    slides.Remove(1);
    EXPECT_EQ(slides.Item(1).index(), 1);
    EXPECT_EQ(slides.Item(5).GetImageAttribute("url"), "Slide_5");
    EXPECT_EQ(slides.Item(5).Duration(), 3000);
}

TEST_F(MessageModelTest, MovingASlideTakesItsElementAndPictureAlong) {
    clsSlides& slides = fresh().Slides();
    for (int i = 0; i < 4; ++i)
        slides.Add().setText(QString::number(i + 1));
    QImage marked(4, 4, QImage::Format_RGB32);
    marked.fill(Qt::red);
    slides.Item(1).setImage(marked);
    slides.Move(1, 3);
    slides.Move(4, 2);
    QStringList order;
    for (pugi::xml_node slide :
         m_message.DOMParent().child("ROOT").child("MESSAGE").child("SLIDES").children()) {
        order << QString(slide.child("TEXT").attribute("text").value());
        EXPECT_EQ(QString(slide.attribute("index").value()).toInt(), order.size());
    }
    EXPECT_EQ(order, QStringList({"2", "4", "3", "1"}));
    EXPECT_EQ(slides.Item(4).Text(), "1");
    EXPECT_EQ(slides.Item(4).image(), marked);
    EXPECT_EQ(slides.Item(4).GetImageAttribute("url"), "Slide_4");
}

TEST_F(MessageModelTest, TheDocumentTextReplacesTheDocumentExactly) {
    clsMessage& message = fresh();
    message.setMMSFileList("\r\n");
    message.Slides().Add().setText(QString::fromUtf8("a\rb & <c> \"ü\""));
    const QByteArray text = message.DocumentXml();
    EXPECT_TRUE(text.startsWith("<?xml version=\"1.0\" encoding=\"utf-8\"?><ROOT>")) << text.data();
    message.Slides().Add();
    message.setName("changed");
    ASSERT_TRUE(message.ReplaceDocument(text));
    EXPECT_EQ(message.DocumentXml(), text);
    EXPECT_EQ(message.Slides().Count(), 1);
    EXPECT_EQ(message.name(), "greeting");
    EXPECT_EQ(message.MMSFileList(), "\r\n") << "a blank file list stays as it was";
    EXPECT_EQ(message.Slides().Item(1).GetTextAttribute("text"),
              QString::fromUtf8("a\rb & <c> \"ü\""));
    EXPECT_EQ(message.Slides().Add().index(), 2) << "the new slides live in the new document";
    EXPECT_FALSE(message.ReplaceDocument("<ROOT>"));
    EXPECT_EQ(message.Slides().Count(), 2);
}

TEST_F(MessageModelTest, EveryAttributeSurvivesTheFile) {
    clsSlide& slide = fresh().Slides().Add();
    slide.setDuration(4500);
    slide.setSound("A260101_77.amr");
    slide.setSoundName("Birds");
    slide.setSoundDuration(4100);
    slide.setText("Line one\r\nLine <two> & \"three\"");
    slide.setColor(255);
    clsDrawObjects& objects = slide.DrawObjects();
    objects.setBackType(clsDrawObjects::BackStill);
    objects.setBackPicture("B1.jpg");
    DrawObjectProperties text = DrawObjectProperties::forText("Grüße", QRect(5, 6, 100, 30), 2);
    text.name = "Label1";
    text.fontName = "DejaVu Serif";
    text.fontSize = 12.5;
    text.fontColor = 65280;
    text.fontAlign = 2;
    text.bold = true;
    text.underline = true;
    text.charset = 238;
    objects.Add().SetAllPproperties(text);
    DrawObjectProperties picture = DrawObjectProperties::forImage("I2.png", QRect(1, 0, 20, 10));
    picture.name = "Image1";
    objects.Add().SetAllPproperties(picture);
    const SlideRenderer renderer(m_work, QSize(160, 120));
    m_message.setSlideRenderer(
        [&](const clsSlide& s, const QString& path) { return renderer.renderToFile(s, path); });
    ASSERT_TRUE(m_message.SaveMessage(dataFile("m.xml")));
    EXPECT_EQ(QImage(m_work + "Slide_1.bmp").pixelColor(0, 0), QColor(Qt::red));

    clsMessage reread;
    reread.Initialize(dataFile("m.xml"), "ignored", m_work);
    ASSERT_EQ(reread.Slides().Count(), 1);
    const clsSlide& back = reread.Slides().Item(1);
    EXPECT_EQ(reread.name(), "greeting");
    EXPECT_EQ(back.Duration(), 4500);
    EXPECT_EQ(back.Sound(), "A260101_77.amr");
    EXPECT_EQ(back.SoundName(), "Birds");
    EXPECT_EQ(back.SoundDuration(), 4100);
    EXPECT_EQ(back.Text(), "Line one\r\nLine <two> & \"three\"");
    EXPECT_EQ(back.Color(), 255);
    EXPECT_EQ(back.DrawObjects().BackType(), 1);
    EXPECT_EQ(back.DrawObjects().BackPicture(), "B1.jpg");
    ASSERT_EQ(back.DrawObjects().Count(), 2);
    const DrawObjectProperties t = back.DrawObjects().Item(1).GetAllPproperties();
    EXPECT_EQ(t.text, "Grüße");
    EXPECT_EQ(t.fontName, "DejaVu Serif");
    EXPECT_DOUBLE_EQ(t.fontSize, 12.5);
    EXPECT_EQ(t.fontColor, 65280);
    EXPECT_EQ(t.fontAlign, 2);
    EXPECT_TRUE(t.bold);
    EXPECT_FALSE(t.italic);
    EXPECT_TRUE(t.underline);
    EXPECT_EQ(t.charset, 238);
    EXPECT_EQ(t.zorder, 2);
    const DrawObjectProperties i = back.DrawObjects().Item(2).GetAllPproperties();
    EXPECT_EQ(i.image, "I2.png");
    EXPECT_EQ(i.w, 20);
    EXPECT_TRUE(i.text.isEmpty());
}

TEST_F(MessageModelTest, TextLineEndsAlwaysReadAsCrLf) {
    clsSlide& slide = fresh().Slides().Add();
    slide.setText("one\rtwo\nthree\r\nfour");
    EXPECT_EQ(slide.Text(), "one\r\ntwo\r\nthree\r\nfour");
    EXPECT_EQ(slide.GetTextAttribute("text"), "one\rtwo\nthree\r\nfour") << "stored as given";
}

TEST_F(MessageModelTest, MissingPartsAreCreatedOnLoad) {
    writeFile(dataFile("a.xml"), "<ROOT><HEADER><CONTENT version=\"2.0\"/></HEADER><MESSAGE "
                                 "name=\"n\"/></ROOT>");
    clsMessage noSlides;
    noSlides.Initialize(dataFile("a.xml"), "", m_work);
    EXPECT_EQ(noSlides.Slides().Count(), 0);
    EXPECT_TRUE(noSlides.DOMParent().child("ROOT").child("MESSAGE").child("SLIDES"));

    writeFile(dataFile("b.xml"),
              "<ROOT><HEADER><CONTENT version=\"2.0\"/></HEADER><MESSAGE><SLIDES>"
              "<SLIDE name=\"Slide\" index=\"1\"/></SLIDES></MESSAGE></ROOT>");
    clsMessage bare;
    bare.Initialize(dataFile("b.xml"), "", m_work);
    ASSERT_EQ(bare.Slides().Count(), 1);
    EXPECT_EQ(bare.Slides().Item(1).Color(), 8421504) << "a background made on load is grey";
    EXPECT_EQ(bare.Slides().Item(1).Duration(), 0);

    writeFile(dataFile("c.xml"), "<ROOT><unclosed></ROOT>");
    clsMessage broken;
    broken.Initialize(dataFile("c.xml"), "named", m_work);
    EXPECT_EQ(broken.version(), "2.0");
    EXPECT_EQ(broken.name(), "named");
    EXPECT_EQ(broken.Slides().Count(), 0);
}

TEST_F(MessageModelTest, NewSlidesAreWhiteUnlessTheSettingsSayOtherwise) {
    EXPECT_EQ(fresh().Slides().Add().Color(), 16777215);
    EXPECT_EQ(m_message.DefaultColor(), 0) << "the message default stays black";
}

TEST_F(MessageModelTest, SlideFilesKeepAnimationsAndFlattenEverythingElse) {
    clsSlides& slides = fresh().Slides();
    for (int i = 0; i < 4; ++i)
        slides.Add();
    clsDrawObjects& fourth = slides.Item(4).DrawObjects();
    fourth.setBackType(clsDrawObjects::KindOfFile("B051114_1234.gif"));
    fourth.setBackPicture("B051114_1234.gif");
    EXPECT_EQ(slides.Item(4).SlideFileName(), "Slide_4.gif");
    fourth.setBackType(clsDrawObjects::KindOfFile("B051114_1234.JPG"));
    fourth.setBackPicture("B051114_1234.JPG");
    EXPECT_EQ(slides.Item(4).SlideFileName(), "Slide_4.bmp");
    EXPECT_EQ(clsDrawObjects::KindOfFile("x.mp4"), 2);
    EXPECT_EQ(clsDrawObjects::KindOfFile("x.wbmp"), 1);
    EXPECT_EQ(clsDrawObjects::KindOfFile("x.txt"), 0);
}

TEST_F(MessageModelTest, DeletingPartsOfASlide) {
    clsSlides& slides = fresh().Slides();
    clsSlide& slide = slides.Add();
    slide.setSound("a.wav");
    slide.setSoundName("a");
    slide.setSoundDuration(100);
    slide.setText("t");
    slide.DrawObjects().setBackType(1);
    slide.DrawObjects().setBackPicture("b.jpg");
    slide.DrawObjects().Add().setTyp("image");
    slide.DrawObjects().Add().setTyp("text");
    slide.setImage(QImage(4, 4, QImage::Format_RGB32));
    slides.Add();

    m_message.DeleteSound(1);
    EXPECT_EQ(slide.Sound(), "");
    EXPECT_EQ(slide.SoundDuration(), 0);
    m_message.DeleteText(1);
    EXPECT_EQ(slide.Text(), "");
    m_message.DeletePicture(1);
    EXPECT_EQ(slide.DrawObjects().Count(), 0);
    EXPECT_EQ(slide.DrawObjects().BackType(), 0);
    EXPECT_EQ(slide.DrawObjects().BackPicture(), "");
    EXPECT_TRUE(slide.image().isNull());
    EXPECT_TRUE(slide.DrawObjects().DOMElement().child("BACKGROUND"));
    m_message.DeleteSlide(1);
    EXPECT_EQ(slides.Count(), 1);
    EXPECT_EQ(slides.Item(1).index(), 1);
}

TEST_F(MessageModelTest, CopyingASlideCopiesItsFilesUnderFreshNames) {
    FakeClock clock(5000, QDateTime(QDate(2005, 11, 14), QTime(12, 0)));
    clock.setStepEvery(3);
    ScopedClock installed(clock);
    writeFile(m_work + "A1.WAV", "sound");
    writeFile(m_work + "B1.gif", "animation");
    writeFile(m_work + "I1.png", "picture");
    clsSlides& slides = fresh().Slides();
    clsSlide& source = slides.Add();
    source.setSound("A1.WAV");
    source.setSoundName("Song");
    source.setDuration(7000);
    source.setText("hello");
    source.DrawObjects().setBackType(2);
    source.DrawObjects().setBackPicture("B1.gif");
    source.DrawObjects().setBackDuration(1200);
    source.DrawObjects().Add().SetAllPproperties(
        DrawObjectProperties::forImage("I1.png", QRect(0, 0, 9, 9)));
    clsSlide& copy = slides.AddAfter(1);
    m_message.CopySlide(slides.Item(1), copy);

    EXPECT_TRUE(copy.Sound().startsWith("A051114_"));
    EXPECT_TRUE(copy.Sound().endsWith(".WAV")) << "the extension stays as it stands";
    EXPECT_NE(copy.Sound(), "A1.WAV");
    EXPECT_EQ(readFile(m_work + copy.Sound()), "sound");
    EXPECT_EQ(readFile(m_work + copy.DrawObjects().BackPicture()), "animation");
    const QString picture = copy.DrawObjects().Item(1).image();
    EXPECT_TRUE(picture.startsWith("I051114_"));
    EXPECT_EQ(readFile(m_work + picture), "picture");
    EXPECT_NE(copy.Sound().mid(1, 13), picture.mid(1, 13)) << "every copy waits for a new tick";
    EXPECT_EQ(copy.SoundName(), "Song");
    EXPECT_EQ(copy.Duration(), 7000);
    EXPECT_EQ(copy.Text(), "hello");
    EXPECT_EQ(copy.DrawObjects().BackDuration(), 1200);
    EXPECT_EQ(copy.DrawObjects().Item(1).Width(), 9);
    EXPECT_EQ(copy.index(), 2);
}

TEST_F(MessageModelTest, SavingRendersFlatSlidesCopiesAnimationsAndDropsStaleFiles) {
    writeFile(m_work + "Slide_9.bmp", "stale");
    writeFile(m_work + "B1.gif", "GIF89a animation");
    clsSlides& slides = fresh().Slides();
    slides.Add();
    slides.Add().DrawObjects().setBackType(2);
    slides.Item(2).DrawObjects().setBackPicture("B1.gif");
    QStringList rendered;
    m_message.setSlideRenderer([&](const clsSlide& slide, const QString& path) {
        rendered << path;
        QFile file(path);
        return file.open(QIODevice::WriteOnly) && file.write("BM") == 2 && slide.index() == 1;
    });
    EXPECT_TRUE(m_message.SaveMessage(m_work + "message.xml"));
    EXPECT_EQ(rendered, QStringList{m_work + "Slide_1.bmp"});
    EXPECT_FALSE(QFile::exists(m_work + "Slide_9.bmp"));
    EXPECT_EQ(readFile(m_work + "Slide_2.gif"), "GIF89a animation");

    m_message.setSlideRenderer([](const clsSlide&, const QString&) { return false; });
    EXPECT_FALSE(m_message.SaveMessage(m_work + "message.xml"));
    EXPECT_TRUE(m_message.lastError().contains("Slide_1.bmp"));
}
