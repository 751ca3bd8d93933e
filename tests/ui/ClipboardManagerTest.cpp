#include "AppGlobals.h"
#include "SettingsBootstrap.h"
#include "TempDataHome.h"
#include "clsClipboardManager.h"
#include "clsPropertiesXML.h"
#include "clsXMLocalizer.h"

#include <QBuffer>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>
#include <memory>

namespace {
const QString OwnFormat = "application/x-vellumo-2C81C8FC-7C9A-4ABC-B800-26649F7A2C73";
const QString PictureFormat = OwnFormat + "-picture";
const QString Unusable = "The clipboard holds nothing that can be put on a slide.";
const QString NotFound = "The file cannot be found.";

DrawObjectProperties fullText() {
    DrawObjectProperties text =
        DrawObjectProperties::forText("Hello, world", QRect(-5, 20, 100, 40));
    text.fontName = "DejaVu Sans";
    text.fontSize = 14;
    text.fontColor = 0x123456;
    text.bold = true;
    text.underline = true;
    text.fontAlign = 2;
    text.charset = 161;
    return text;
}

void expectSameText(const DrawObjectProperties& seen, const DrawObjectProperties& expected) {
    EXPECT_EQ(seen.typ, "text");
    EXPECT_EQ(seen.text, expected.text);
    EXPECT_EQ(QRect(seen.x, seen.y, seen.w, seen.h),
              QRect(expected.x, expected.y, expected.w, expected.h));
    EXPECT_EQ(seen.fontName, expected.fontName);
    EXPECT_EQ(seen.fontSize, expected.fontSize);
    EXPECT_EQ(seen.fontColor, expected.fontColor);
    EXPECT_EQ(seen.bold, expected.bold);
    EXPECT_EQ(seen.italic, expected.italic);
    EXPECT_EQ(seen.underline, expected.underline);
    EXPECT_EQ(seen.fontAlign, expected.fontAlign);
    EXPECT_EQ(seen.charset, expected.charset);
}

bool readable(const QString& text) {
    return clsClipboardManager::parseClipString(text).has_value();
}

// The clipboard of the test program, emptied before and after each test.
class ClipboardTest : public TempDataHome {
protected:
    void SetUp() override {
        TempDataHome::SetUp();
        m_work = m_root.path() + "/work";
        ASSERT_TRUE(QDir().mkpath(m_work));
        clipboard()->clear();
    }
    void TearDown() override {
        clipboard()->clear();
        TempDataHome::TearDown();
    }

    static QClipboard* clipboard() { return QGuiApplication::clipboard(); }
    static const QMimeData& onClipboard() { return *clipboard()->mimeData(); }
    // Puts what another program would have put on the clipboard.
    static void offer(const QString& format, const QByteArray& bytes) {
        auto* mime = new QMimeData;
        mime->setData(format, bytes);
        clipboard()->setMimeData(mime);
    }
    static void offerOwn(const QString& text, const QByteArray& picture) {
        auto* mime = new QMimeData;
        mime->setData(OwnFormat, text.toUtf8());
        mime->setData(PictureFormat, picture);
        clipboard()->setMimeData(mime);
    }

    QString work(const QString& name) const { return m_work + "/" + name; }
    static QStringList filesIn(const QString& folder) {
        return QDir(folder).entryList(
            QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System, QDir::Name);
    }
    static QByteArray bytesOf(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    static void savePicture(const QString& path, const char* format, QSize size = {64, 48}) {
        QImage picture(size, QImage::Format_RGB32);
        picture.fill(QColor(200, 40, 30));
        ASSERT_TRUE(picture.save(path, format)) << path.toStdString();
    }
    static QByteArray pngBytes() {
        QImage picture(8, 6, QImage::Format_RGB32);
        picture.fill(Qt::blue);
        QByteArray png;
        QBuffer buffer(&png);
        buffer.open(QIODevice::WriteOnly);
        picture.save(&buffer, "PNG");
        return png;
    }
    static void useGerman() {
        AppGlobals::installSettings(SettingsBootstrap::openAndPrepare());
        auto localizer = std::make_unique<clsXMLocalizer>(*AppGlobals::settings());
        ASSERT_TRUE(localizer->SetLanguage("de-de"));
        AppGlobals::installLocalizer(std::move(localizer));
    }

    clsClipboardManager m_manager;
    QString m_work;
};

class ClipboardStringTest : public ::testing::Test {};
class ClipboardCopyTest : public ClipboardTest {};
class ClipboardPasteTest : public ClipboardTest {};
class ClipboardHostileTest : public ClipboardTest {};
} // namespace

TEST_F(ClipboardStringTest, AnImageIsItsClipFileAndRectangle) {
    const auto image = DrawObjectProperties::forImage("clipimg.jpg", QRect(10, 20, 64, 48));
    EXPECT_EQ(clsClipboardManager::clipString(image), "image;clipimg.jpg;10;20;64;48");
    const auto read = clsClipboardManager::parseClipString("image;clipimg.jpg;-10;20;64;48");
    ASSERT_TRUE(read);
    EXPECT_EQ(read->typ, "image");
    EXPECT_EQ(read->image, "clipimg.jpg");
    EXPECT_EQ(QRect(read->x, read->y, read->w, read->h), QRect(-10, 20, 64, 48));
}

TEST_F(ClipboardStringTest, ATextCarriesEveryPropertyWithWordsForTheStyles) {
    const QString text = clsClipboardManager::clipString(fullText());
    EXPECT_EQ(text, "text;Hello, world;-5;20;100;40;DejaVu Sans;14;1193046;True;False;True;2;161");
    const auto read = clsClipboardManager::parseClipString(text);
    ASSERT_TRUE(read);
    expectSameText(*read, fullText());

    DrawObjectProperties sized = fullText();
    sized.fontSize = 10.5;
    EXPECT_EQ(clsClipboardManager::clipString(sized).section(';', 7, 7), "11");
    sized.fontSize = 10.4;
    EXPECT_EQ(clsClipboardManager::clipString(sized).section(';', 7, 7), "10");
}

TEST_F(ClipboardStringTest, NumbersAreReadOnlyWithinTheirRange) {
    const QString text = clsClipboardManager::clipString(fullText());
    const auto with = [&](int field, const QString& value) {
        QStringList fields = text.split(';');
        fields[field] = value;
        return fields.join(';');
    };
    for (int field : {2, 3, 4, 5, 7, 12}) {
        SCOPED_TRACE(field);
        EXPECT_TRUE(readable(with(field, "-32768")));
        EXPECT_TRUE(readable(with(field, "32767")));
        EXPECT_FALSE(readable(with(field, "-32769")));
        EXPECT_FALSE(readable(with(field, "32768")));
        EXPECT_FALSE(readable(with(field, "99999999999999999999999")));
    }
    EXPECT_TRUE(readable(with(8, "16777215")));
    EXPECT_FALSE(readable(with(8, "16777216")));
    EXPECT_FALSE(readable(with(8, "-1")));
    EXPECT_TRUE(readable(with(13, "255")));
    EXPECT_FALSE(readable(with(13, "256")));
    EXPECT_FALSE(readable(with(13, "-1")));
    for (const QString& junk :
         QStringList{"", "1.5", "1e3", "+1", " 1", "1 ", "0x10", "1\n", "ten", "١"})
        EXPECT_FALSE(readable(with(2, junk))) << junk.toStdString();
    for (const QString& word : QStringList{"true", "TRUE", "1", "", "Yes"})
        EXPECT_FALSE(readable(with(10, word))) << word.toStdString();
}

TEST_F(ClipboardStringTest, StringsOfAnotherShapeAreRefused) {
    for (const QString& junk :
         QStringList{"", ";", "image", "image;clipimg.png;1;2;3", "image;clipimg.png;1;2;3;4;5",
                     "Image;clipimg.png;1;2;3;4", "picture;clipimg.png;1;2;3;4",
                     "image;clipimg.txt;1;2;3;4", "image;clipimg;1;2;3;4", "image;;1;2;3;4",
                     "text;Hi;1;2;3;4", "text;Hi;1;2;3;4;Arial;10;0;True;False;False;0",
                     " image;clipimg.png;1;2;3;4"})
        EXPECT_FALSE(readable(junk)) << junk.toStdString();
}

TEST_F(ClipboardStringTest, ACaptionHoldingASemicolonCannotBeReadBack) {
    DrawObjectProperties text = fullText();
    text.text = "Meet at 10;30";
    const QString written = clsClipboardManager::clipString(text);
    EXPECT_TRUE(written.startsWith("text;Meet at 10;30;-5;20;"));
    EXPECT_FALSE(readable(written))
        << "read by position, the caption would be \"Meet at 10\" and Left 30";
}

TEST_F(ClipboardStringTest, AClipFileNameMustBeAPlainPictureName) {
    EXPECT_TRUE(readable("image;clipimg.TIFF;0;0;1;1"));
    for (const QString& name : QStringList{"../x.png", "/etc/passwd", "/tmp/x.png", "sub/x.png",
                                           "..", "a\\b.png", "x\x01.png"})
        EXPECT_FALSE(readable("image;" + name + ";0;0;1;1")) << name.toStdString();
}

TEST_F(ClipboardCopyTest, AnImageGoesOnAsStringClipFileBytesAndPicture) {
    savePicture(work("photo.jpg"), "JPEG");
    const QByteArray source = bytesOf(work("photo.jpg"));
    ASSERT_TRUE(m_manager.copyObject(
        m_work, DrawObjectProperties::forImage("photo.jpg", QRect(10, 20, 64, 48))));

    EXPECT_TRUE(m_manager.IsDataAvaliable());
    EXPECT_EQ(m_manager.GetPrivateClipboardString(), "image;clipimg.jpg;10;20;64;48");
    EXPECT_EQ(bytesOf(work("clipimg.jpg")), source);
    EXPECT_EQ(filesIn(m_work), QStringList({"clipimg.jpg", "photo.jpg"}));
    EXPECT_EQ(onClipboard().data(PictureFormat), source);
    ASSERT_TRUE(onClipboard().hasImage()) << "other programs paste the picture";
    EXPECT_EQ(qvariant_cast<QImage>(onClipboard().imageData()).size(), QSize(64, 48));
    EXPECT_FALSE(onClipboard().hasText());
}

TEST_F(ClipboardCopyTest, ATextGoesOnAsStringAndPlainText) {
    ASSERT_TRUE(m_manager.copyObject(m_work, fullText()));
    EXPECT_EQ(m_manager.GetPrivateClipboardString(), clsClipboardManager::clipString(fullText()));
    EXPECT_EQ(onClipboard().text(), "Hello, world");
    EXPECT_FALSE(onClipboard().hasImage());
    EXPECT_TRUE(filesIn(m_work).isEmpty());
}

TEST_F(ClipboardCopyTest, WhatTheStringCannotCarryGoesOnOnlyForOtherPrograms) {
    DrawObjectProperties text = fullText();
    text.text = "Meet at 10;30";
    ASSERT_TRUE(m_manager.copyObject(m_work, text));
    EXPECT_FALSE(m_manager.IsDataAvaliable());
    EXPECT_EQ(onClipboard().text(), "Meet at 10;30");

    savePicture(work("far.png"), "PNG");
    ASSERT_TRUE(m_manager.copyObject(
        m_work, DrawObjectProperties::forImage("far.png", QRect(40000, 0, 1, 1))));
    EXPECT_FALSE(m_manager.IsDataAvaliable());
    EXPECT_FALSE(onClipboard().hasFormat(PictureFormat));
    EXPECT_TRUE(onClipboard().hasImage());
    EXPECT_EQ(filesIn(m_work), QStringList{"far.png"}) << "no clip file without the string";
}

TEST_F(ClipboardCopyTest, AFailedCopyLeavesTheClipboardAsItWas) {
    m_manager.SetPrivateClipboardString("kept");
    writeFile(work("broken.png"), "not a picture at all");
    QString why;
    EXPECT_FALSE(
        m_manager.copyObject(m_work, DrawObjectProperties::forImage("gone.png", QRect()), &why));
    EXPECT_EQ(why, NotFound);
    why.clear();
    EXPECT_FALSE(
        m_manager.copyObject(m_work, DrawObjectProperties::forImage("broken.png", QRect()), &why));
    EXPECT_TRUE(why.contains("cannot be decoded")) << why.toStdString();
    DrawObjectProperties line = fullText();
    line.typ = "line";
    EXPECT_FALSE(m_manager.copyObject(m_work, line));
    EXPECT_EQ(m_manager.GetPrivateClipboardString(), "kept");
    EXPECT_EQ(filesIn(m_work), QStringList{"broken.png"});
}

TEST_F(ClipboardPasteTest, ATextComesBackWithEveryProperty) {
    ASSERT_TRUE(m_manager.copyObject(m_work, fullText()));
    EXPECT_TRUE(m_manager.canPaste());
    const ClipboardPaste paste = m_manager.paste(m_work);
    ASSERT_EQ(paste.kind, ClipboardPaste::Object);
    expectSameText(paste.object, fullText());
}

TEST_F(ClipboardPasteTest, AnImageComesBackFromTheClipFile) {
    savePicture(work("photo.png"), "PNG");
    ASSERT_TRUE(m_manager.copyObject(
        m_work, DrawObjectProperties::forImage("photo.png", QRect(1, 2, 3, 4))));
    ASSERT_TRUE(QFile::remove(work("photo.png"))) << "the object may be gone by the paste";
    const ClipboardPaste paste = m_manager.paste(m_work);
    ASSERT_EQ(paste.kind, ClipboardPaste::Object) << paste.why.toStdString();
    EXPECT_EQ(paste.object.typ, "image");
    EXPECT_EQ(paste.object.image, "clipimg.png");
    EXPECT_EQ(QRect(paste.object.x, paste.object.y, paste.object.w, paste.object.h),
              QRect(1, 2, 3, 4));
    EXPECT_EQ(QImage(work("clipimg.png")).size(), QSize(64, 48));
}

TEST_F(ClipboardPasteTest, AnotherRunningCopyGetsThePictureFromItsBytes) {
    savePicture(work("photo.jpg"), "JPEG");
    ASSERT_TRUE(m_manager.copyObject(
        m_work, DrawObjectProperties::forImage("photo.jpg", QRect(5, 6, 7, 8))));
    const QString otherWork = m_root.path() + "/other";
    ASSERT_TRUE(QDir().mkpath(otherWork));

    const ClipboardPaste paste = clsClipboardManager().paste(otherWork);
    ASSERT_EQ(paste.kind, ClipboardPaste::Object) << paste.why.toStdString();
    EXPECT_EQ(paste.object.image, "clipimg.jpg");
    EXPECT_EQ(paste.object.x, 5);
    EXPECT_EQ(paste.object.h, 8);
    EXPECT_EQ(filesIn(otherWork), QStringList{"clipimg.jpg"});
    EXPECT_EQ(bytesOf(otherWork + "/clipimg.jpg"), bytesOf(work("photo.jpg")));
}

TEST_F(ClipboardPasteTest, WithoutBytesTheClipFileMustBeThere) {
    m_manager.SetPrivateClipboardString("image;clipimg.png;1;2;3;4");
    EXPECT_TRUE(m_manager.canPaste());
    ClipboardPaste paste = m_manager.paste(m_work);
    EXPECT_EQ(paste.kind, ClipboardPaste::Refused);
    EXPECT_EQ(paste.why, NotFound);

    writeFile(work("clipimg.png"), pngBytes());
    paste = m_manager.paste(m_work);
    ASSERT_EQ(paste.kind, ClipboardPaste::Object) << paste.why.toStdString();
    EXPECT_EQ(paste.object.image, "clipimg.png");
}

TEST_F(ClipboardPasteTest, PictureBytesMustDecodeAndStayWithinTheLimit) {
    offerOwn("image;clipimg.png;0;0;8;6", "no picture, only words");
    ClipboardPaste paste = m_manager.paste(m_work);
    EXPECT_EQ(paste.kind, ClipboardPaste::Refused);
    EXPECT_TRUE(paste.why.contains("cannot be decoded")) << paste.why.toStdString();

    QFile::remove(work("clipimg.png"));
    QByteArray huge = pngBytes();
    huge.append(QByteArray(clsClipboardManager::MaxPictureBytes + 1 - huge.size(), '\0'));
    offerOwn("image;clipimg.png;0;0;8;6", huge);
    paste = m_manager.paste(m_work);
    EXPECT_EQ(paste.kind, ClipboardPaste::Refused);
    EXPECT_EQ(paste.why, Unusable);
    EXPECT_TRUE(filesIn(m_work).isEmpty());
}

TEST_F(ClipboardPasteTest, APictureTooLargeToTravelStillPastesInThisCopy) {
    savePicture(work("big.jpg"), "JPEG");
    QFile big(work("big.jpg"));
    ASSERT_TRUE(big.open(QIODevice::Append));
    // JPEG readers stop at the end-of-picture marker and ignore what follows.
    big.write(QByteArray(clsClipboardManager::MaxPictureBytes, '\0'));
    big.close();
    ASSERT_TRUE(m_manager.copyObject(m_work, DrawObjectProperties::forImage("big.jpg", QRect())));
    EXPECT_TRUE(m_manager.IsDataAvaliable());
    EXPECT_FALSE(onClipboard().hasFormat(PictureFormat));
    EXPECT_EQ(m_manager.paste(m_work).kind, ClipboardPaste::Object);

    const QString otherWork = m_root.path() + "/other";
    ASSERT_TRUE(QDir().mkpath(otherWork));
    const ClipboardPaste elsewhere = m_manager.paste(otherWork);
    EXPECT_EQ(elsewhere.kind, ClipboardPaste::Refused);
    EXPECT_EQ(elsewhere.why, NotFound);
}

TEST_F(ClipboardPasteTest, AnotherProgramsPictureBecomesAPngToPlace) {
    QImage picture(30, 20, QImage::Format_RGB32);
    picture.fill(QColor(10, 200, 90));
    auto* mime = new QMimeData;
    mime->setImageData(picture);
    clipboard()->setMimeData(mime);
    EXPECT_FALSE(m_manager.IsDataAvaliable());
    EXPECT_TRUE(m_manager.canPaste());

    const ClipboardPaste paste = m_manager.paste(m_work);
    ASSERT_EQ(paste.kind, ClipboardPaste::Object) << paste.why.toStdString();
    EXPECT_EQ(paste.object.typ, "image");
    EXPECT_EQ(paste.object.image, "clipimg.png");
    EXPECT_EQ(QRect(paste.object.x, paste.object.y, paste.object.w, paste.object.h), QRect());
    EXPECT_TRUE(bytesOf(work("clipimg.png")).startsWith("\x89PNG"));
    const QImage written(work("clipimg.png"));
    ASSERT_EQ(written.size(), QSize(30, 20));
    EXPECT_EQ(written.pixelColor(29, 19), QColor(10, 200, 90));
}

TEST_F(ClipboardPasteTest, AnotherProgramsTextBecomesATextInTheNewTextFont) {
    clipboard()->setText(QString::fromUtf8("Grüße; bis bald"));
    EXPECT_TRUE(m_manager.canPaste());
    const ClipboardPaste paste = m_manager.paste(m_work);
    ASSERT_EQ(paste.kind, ClipboardPaste::Object);
    expectSameText(paste.object,
                   DrawObjectProperties::forText(QString::fromUtf8("Grüße; bis bald"), QRect()));
    EXPECT_TRUE(filesIn(m_work).isEmpty());
}

TEST_F(ClipboardPasteTest, ACaptionWithASemicolonComesBackWhole) {
    DrawObjectProperties text = fullText();
    text.text = "Meet at 10;30";
    ASSERT_TRUE(m_manager.copyObject(m_work, text));
    const ClipboardPaste paste = m_manager.paste(m_work);
    ASSERT_EQ(paste.kind, ClipboardPaste::Object);
    expectSameText(paste.object, DrawObjectProperties::forText("Meet at 10;30", QRect()));
}

TEST_F(ClipboardPasteTest, OtherDataIsRefusedWithTheProgramsMessage) {
    const QList<QPair<QString, QByteArray>> others{{"application/x-foo", "foo"},
                                                   {"text/html", "<b>bold</b>"},
                                                   {"text/plain", ""},
                                                   {OwnFormat, "text;cut;short"},
                                                   {OwnFormat, "image;clipimg.png;0;0;70000;1"}};
    for (const auto& [format, bytes] : others) {
        SCOPED_TRACE(format.toStdString() + " " + bytes.toStdString());
        offer(format, bytes);
        EXPECT_FALSE(m_manager.canPaste());
        const ClipboardPaste paste = m_manager.paste(m_work);
        EXPECT_EQ(paste.kind, ClipboardPaste::Refused);
        EXPECT_EQ(paste.why, Unusable);
    }
    useGerman();
    offer("application/x-foo", "foo");
    EXPECT_EQ(m_manager.paste(m_work).why,
              QString::fromUtf8(
                  "Die Zwischenablage enthält nichts, was auf eine Folie gesetzt werden kann."));
    EXPECT_TRUE(filesIn(m_work).isEmpty());
}

TEST_F(ClipboardHostileTest, AClipNameNeverLeadsOutOfTheWorkFolder) {
    const QString parent = m_root.path();
    const QStringList before = filesIn(parent);
    for (const QString& name :
         QStringList{"../x.png", "/etc/passwd", parent + "/x.png", "work/../x.png"}) {
        SCOPED_TRACE(name.toStdString());
        offerOwn("image;" + name + ";0;0;8;6", pngBytes());
        EXPECT_FALSE(m_manager.canPaste());
        EXPECT_EQ(m_manager.paste(m_work).kind, ClipboardPaste::Refused);
        m_manager.SetPrivateClipboardString("image;" + name + ";0;0;8;6");
        EXPECT_EQ(m_manager.paste(m_work).kind, ClipboardPaste::Refused);
    }
    EXPECT_EQ(filesIn(parent), before);
    EXPECT_TRUE(filesIn(m_work).isEmpty());
}

TEST_F(ClipboardHostileTest, ALinkUnderTheClipFileNameIsNotWrittenThrough) {
    const QString outside = m_root.path() + "/outside.png";
    writeFile(outside, "precious");
    ASSERT_TRUE(QFile::link(outside, work("clipimg.png")));

    offerOwn("image;clipimg.png;0;0;8;6", pngBytes());
    ClipboardPaste paste = m_manager.paste(m_work);
    EXPECT_EQ(paste.kind, ClipboardPaste::Refused);
    EXPECT_TRUE(paste.why.contains("link")) << paste.why.toStdString();

    m_manager.SetPrivateClipboardString("image;clipimg.png;0;0;8;6");
    paste = m_manager.paste(m_work);
    EXPECT_EQ(paste.kind, ClipboardPaste::Refused) << "a link is not read either";

    QImage picture(4, 4, QImage::Format_RGB32);
    picture.fill(Qt::white);
    auto* mime = new QMimeData;
    mime->setImageData(picture);
    clipboard()->setMimeData(mime);
    EXPECT_EQ(m_manager.paste(m_work).kind, ClipboardPaste::Refused);

    savePicture(work("photo.png"), "PNG");
    EXPECT_FALSE(
        m_manager.copyObject(m_work, DrawObjectProperties::forImage("photo.png", QRect())));

    EXPECT_EQ(bytesOf(outside), "precious");
    EXPECT_TRUE(QFileInfo(work("clipimg.png")).isSymLink());
}

TEST_F(ClipboardHostileTest, BytesNeverReplaceAnotherWorkFile) {
    writeFile(work("photo.png"), "the user's own picture");
    offerOwn("image;photo.png;0;0;8;6", pngBytes());
    const ClipboardPaste paste = m_manager.paste(m_work);
    ASSERT_EQ(paste.kind, ClipboardPaste::Object) << paste.why.toStdString();
    EXPECT_EQ(paste.object.image, "clipimg.png");
    EXPECT_EQ(bytesOf(work("clipimg.png")), pngBytes());
    EXPECT_EQ(bytesOf(work("photo.png")), "the user's own picture");
}
