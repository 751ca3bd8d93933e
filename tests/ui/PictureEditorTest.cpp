#include "AppGlobals.h"
#include "DialogService.h"
#include "MessageDocument.h"
#include "PhotoSamples.h"
#include "PictureEditorMenu.h"
#include "ProgramRun.h"
#include "SettingsBootstrap.h"
#include "TempDataHome.h"
#include "clsDrawObjects.h"
#include "clsMMSManager.h"
#include "clsMessage.h"
#include "clsPopupMenu.h"
#include "clsPropertiesXML.h"
#include "clsXMLocalizer.h"
#include "ctlPictureEditor.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QMenu>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QSignalSpy>
#include <QTest>
#include <QUrl>

// The picture editor driven by mouse, keys, drops and the clipboard, on a
// real message whose saved slides the command line tool reads back.
class PictureEditorTest : public TempDataHome {
protected:
    void SetUp() override {
        TempDataHome::SetUp();
        AppGlobals::installSettings(SettingsBootstrap::openAndPrepare());
        auto localizer = std::make_unique<clsXMLocalizer>(*AppGlobals::settings());
        ASSERT_TRUE(localizer->SetLanguage("en-us"));
        AppGlobals::installLocalizer(std::move(localizer));
        m_editor.TranslateControl();
        m_manager.InitializeAt(m_root.path() + "/work", m_root.path() + "/archive", "message.xml");
        m_document.newMessage();
        m_editor.SetSurfaceSize(QSize(160, 120));
        // Room for the slide at twice its size.
        m_editor.resize(340, 260);
        m_editor.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_editor));
        QGuiApplication::clipboard()->clear();
    }
    void TearDown() override {
        DialogService::clear();
        clsPopupMenu::clear();
        TempDataHome::TearDown();
    }

    clsDrawObjects& objects() const {
        return m_document.message()->Slides().Item(m_document.currentSlide()).DrawObjects();
    }
    DrawObjectProperties object(int index) const {
        return objects().Item(index).GetAllPproperties();
    }
    QByteArray xml() const { return m_document.message()->DocumentXml(); }
    // A picture of one colour, written where the user keeps pictures.
    QString picture(const QString& name, QSize size, QColor colour, const char* format = nullptr) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(colour);
        const QString path = dataFile(name);
        EXPECT_TRUE(image.save(path, format));
        return path;
    }
    // Where a slide point is shown in the editor.
    QPoint shown(int x, int y) const {
        const QRect area = m_editor.pictureRect();
        return area.topLeft() + QPoint(x, y) * (area.width() / 160);
    }
    void drag(QPoint from, QPoint to, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::mousePress(&m_editor, Qt::LeftButton, modifiers, from);
        // Moved in steps, as a hand does, the keys held all the way.
        for (int step = 1; step <= 4; ++step) {
            const QPointF at = from + (to - from) * step / 4;
            QMouseEvent move(QEvent::MouseMove, at, m_editor.mapToGlobal(at), Qt::NoButton,
                             Qt::LeftButton, modifiers);
            QApplication::sendEvent(&m_editor, &move);
        }
        QTest::mouseRelease(&m_editor, Qt::LeftButton, modifiers, to);
    }
    void drop(QMimeData* data, QPoint at) {
        QDragEnterEvent enter(at, Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&m_editor, &enter);
        QDropEvent dropped(at, Qt::CopyAction, data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&m_editor, &dropped);
    }
    void dropFile(const QString& path, QPoint at) {
        QMimeData data;
        data.setUrls({QUrl::fromLocalFile(path)});
        drop(&data, at);
    }
    QString lastBoxText() const {
        const auto boxes = DialogService::answeredBoxes();
        return boxes.isEmpty() ? QString() : boxes.last().text;
    }

    clsMMSManager m_manager;
    MessageDocument m_document{m_manager};
    ctlPictureEditor m_editor{m_document};
};

TEST_F(PictureEditorTest, PlacesMovesResizesAndNudgesObjectsEachOneUndoableStep) {
    ASSERT_EQ(m_editor.pictureRect().size(), QSize(320, 240)) << "a small slide at a whole zoom";
    ASSERT_TRUE(m_editor.AddImage(picture("red.png", QSize(40, 30), Qt::red)));
    EXPECT_EQ(object(1).typ, "image");
    EXPECT_EQ(QRect(object(1).x, object(1).y, object(1).w, object(1).h), QRect(60, 45, 40, 30))
        << "its own size, in the middle";
    EXPECT_EQ(m_editor.selectedObject(), 1);
    const QByteArray placed = xml();

    drag(shown(70, 50), shown(80, 55));
    EXPECT_EQ(QPoint(object(1).x, object(1).y), QPoint(70, 50));
    EXPECT_EQ(m_document.undoStack().count(), 2) << "a drag of many moves is one step";

    // The lower right handle, with Shift keeping the proportions 4:3.
    drag(shown(110, 80), shown(130, 80), Qt::ShiftModifier);
    EXPECT_EQ(QSize(object(1).w, object(1).h), QSize(60, 45));
    drag(shown(80, 60), shown(80, 60) + QPoint(-200, -200));
    EXPECT_EQ(QPoint(object(1).x, object(1).y), QPoint(-30, -41))
        << "dragged off the slide a corner stays on it, to be grabbed again";

    m_document.undoStack().undo();
    EXPECT_EQ(QPoint(object(1).x, object(1).y), QPoint(70, 50));
    m_editor.setFocus();
    QTest::keyClick(&m_editor, Qt::Key_Right);
    QTest::keyClick(&m_editor, Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(&m_editor, Qt::Key_Left, Qt::ControlModifier);
    EXPECT_EQ(QRect(object(1).x, object(1).y, object(1).w, object(1).h), QRect(71, 60, 59, 45));
    const int steps = m_document.undoStack().index();
    m_document.undoStack().undo();
    EXPECT_EQ(m_document.undoStack().index(), steps - 1) << "the nudges were one step";
    EXPECT_EQ(QPoint(object(1).x, object(1).y), QPoint(70, 50));
    while (m_document.undoStack().canUndo() && xml() != placed)
        m_document.undoStack().undo();
    EXPECT_EQ(xml(), placed) << "undo walks back to the placed picture exactly";
}

TEST_F(PictureEditorTest, TheRightClickMenuFollowsTheSelectionAndSelectsByNumber) {
    EXPECT_EQ(m_editor.menuDescriptor(),
              "!Cut;9,!Copy;10,!Paste;11,-,!Duplicate;1,!Delete;2,-,!Bring to front;3,"
              "!Send to back;4,-,Add text;5,Picture from file…;6,-,Background picture…;7,"
              "Background color…;8")
        << "without objects: the editing commands off, no selection submenu: "
        << m_editor.menuDescriptor().toStdString();

    m_editor.AddImage(picture("red.png", QSize(40, 30), Qt::red));
    m_editor.AddText();
    m_editor.SaveDrawObjects();
    m_editor.AddImage(picture("blue.png", QSize(20, 20), Qt::blue));
    m_editor.selectObject(0);
    const QString none = m_editor.menuDescriptor();
    EXPECT_TRUE(none.startsWith("!Cut;9,!Copy;10,")) << none.toStdString();
    EXPECT_TRUE(none.endsWith(",-,Select object;0|red.png;101|blue.png;102|New text;201"))
        << "images first, then texts, each counted in its kind: " << none.toStdString();

    // Chosen from the menu as a user would: the text, by its number.
    clsPopupMenu::queueChoice([](QMenu& menu) {
        for (QAction* action : menu.actions())
            if (action->menu())
                for (QAction* item : action->menu()->actions())
                    if (clsPopupMenu::commandNumber(item) == 201)
                        return item;
        return static_cast<QAction*>(nullptr);
    });
    QContextMenuEvent click(QContextMenuEvent::Mouse, shown(5, 5),
                            m_editor.mapToGlobal(shown(5, 5)));
    QApplication::sendEvent(&m_editor, &click);
    EXPECT_EQ(m_editor.selectedObject(), 2);
    const QString onText = m_editor.menuDescriptor();
    EXPECT_TRUE(onText.startsWith("Cut;9,Copy;10,")) << onText.toStdString();
    EXPECT_TRUE(onText.endsWith("|#New text;201")) << "the selected object is ticked";

    // From the keyboard: Shift+F10 shows the same menu at the selection.
    clsPopupMenu::queueChoice([](QMenu&) { return static_cast<QAction*>(nullptr); });
    m_editor.setFocus();
    QTest::keyClick(&m_editor, Qt::Key_F10, Qt::ShiftModifier);
    ASSERT_EQ(clsPopupMenu::answeredMenus().size(), 2);
    EXPECT_EQ(clsPopupMenu::answeredMenus().last().descriptor, onText);

    m_editor.runMenuCommand(PictureEditorMenu::FirstImage + 2);
    EXPECT_EQ(object(m_editor.selectedObject()).name, "blue.png");
}

TEST_F(PictureEditorTest, StackingDeletingAndTheKeyboardAlone) {
    m_editor.AddImage(picture("red.png", QSize(40, 30), Qt::red));
    m_editor.AddImage(picture("blue.png", QSize(40, 30), Qt::blue));
    m_editor.setFocus();
    // Tab walks the objects from the bottom of the stack, then leaves.
    m_editor.selectObject(0);
    QTest::keyClick(&m_editor, Qt::Key_Tab);
    EXPECT_EQ(m_editor.selectedObject(), 1);
    QTest::keyClick(&m_editor, Qt::Key_Tab);
    EXPECT_EQ(m_editor.selectedObject(), 2);
    EXPECT_EQ(m_editor.RenderImage(QSize(160, 120)).pixelColor(80, 60), QColor(Qt::blue));

    QTest::keyClick(&m_editor, Qt::Key_End, Qt::ControlModifier);
    EXPECT_EQ(m_editor.RenderImage(QSize(160, 120)).pixelColor(80, 60), QColor(Qt::red))
        << "sent to the back, the blue picture is covered";
    QTest::keyClick(&m_editor, Qt::Key_Home, Qt::ControlModifier);
    EXPECT_EQ(m_editor.RenderImage(QSize(160, 120)).pixelColor(80, 60), QColor(Qt::blue));
    EXPECT_GT(object(2).zorder, object(1).zorder);

    QTest::keyClick(&m_editor, Qt::Key_D, Qt::ControlModifier);
    ASSERT_EQ(objects().Count(), 3);
    EXPECT_EQ(m_editor.selectedObject(), 3);
    EXPECT_EQ(QPoint(object(3).x, object(3).y), QPoint(object(2).x + 8, object(2).y + 8));
    EXPECT_NE(object(3).image, object(2).image) << "the copy has its own picture file";

    DialogService::queueAnswer(QMessageBox::No);
    QTest::keyClick(&m_editor, Qt::Key_Delete);
    EXPECT_EQ(objects().Count(), 3) << "No keeps it";
    EXPECT_EQ(lastBoxText(), "Delete the selected object from the picture?");
    DialogService::queueAnswer(QMessageBox::Yes);
    QTest::keyClick(&m_editor, Qt::Key_Delete);
    EXPECT_EQ(objects().Count(), 2);
    EXPECT_EQ(m_editor.selectedObject(), 0);
    m_document.undoStack().undo();
    EXPECT_EQ(objects().Count(), 3);
}

TEST_F(PictureEditorTest, TextsAreAddedInVerdanaAndEditedInPlace) {
    m_editor.AddText();
    auto* typing = m_editor.findChild<QPlainTextEdit*>("txtInPlace");
    ASSERT_NE(typing, nullptr) << "a new text opens for typing";
    QTest::keyClicks(typing, "Hello");
    QTest::keyClick(typing, Qt::Key_Return);
    QTest::keyClicks(typing, "there");
    QTest::keyClick(typing, Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(object(1).text, "Hello\r\nthere");
    EXPECT_EQ(object(1).fontName, "Verdana") << "stored by its name, whatever stands in for it";
    const int steps = m_document.undoStack().count();

    const QPoint middle = m_editor.shownObjects().first().rect.center();
    QTest::mouseDClick(&m_editor, Qt::LeftButton, Qt::NoModifier, middle);
    typing = m_editor.findChild<QPlainTextEdit*>("txtInPlace");
    ASSERT_NE(typing, nullptr);
    QTest::keyClicks(typing, "gone");
    QTest::keyClick(typing, Qt::Key_Escape);
    EXPECT_EQ(object(1).text, "Hello\r\nthere") << "Escape keeps the text as it was";
    EXPECT_EQ(m_document.undoStack().count(), steps);

    DrawObjectProperties styled = object(1);
    styled.bold = true;
    styled.fontColor = 255;
    styled.fontAlign = 2;
    ASSERT_EQ(m_editor.selectedObject(), 1);
    m_editor.ApplyText(styled);
    EXPECT_TRUE(object(1).bold);
    EXPECT_EQ(object(1).fontColor, 255);
    m_document.undoStack().undo();
    EXPECT_FALSE(object(1).bold);
}

TEST_F(PictureEditorTest, CopyAndPasteThroughThePrivateFormatAndWithOtherPrograms) {
    m_editor.AddImage(picture("photo.JPG", QSize(40, 30), Qt::green, "JPG"));
    m_editor.copySelected();
    const QString clip = clsClipboardManager().GetPrivateClipboardString();
    EXPECT_EQ(clip, "image;clipimg.jpg;60;45;40;30");
    EXPECT_TRUE(QFileInfo::exists(m_manager.GetWorkFolderPath() + "clipimg.jpg"));
    EXPECT_FALSE(QGuiApplication::clipboard()->image().isNull()) << "other programs get a picture";

    m_editor.cutSelected();
    EXPECT_EQ(objects().Count(), 0);
    m_editor.setFocus();
    QTest::keyClick(&m_editor, Qt::Key_V, Qt::ControlModifier);
    ASSERT_EQ(objects().Count(), 1);
    EXPECT_EQ(QRect(object(1).x, object(1).y, object(1).w, object(1).h), QRect(60, 45, 40, 30));
    EXPECT_TRUE(object(1).image.startsWith("I")) << "the paste has a picture of its own";

    m_editor.AddText();
    m_editor.ChangeText("Greetings");
    m_editor.SaveDrawObjects();
    DrawObjectProperties styled = object(2);
    styled.italic = true;
    styled.fontSize = 14;
    m_editor.ApplyText(styled);
    QTest::keyClick(&m_editor, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), "Greetings");
    QTest::keyClick(&m_editor, Qt::Key_V, Qt::ControlModifier);
    ASSERT_EQ(objects().Count(), 3);
    DrawObjectProperties pasted = object(3);
    EXPECT_EQ(pasted.text, "Greetings");
    EXPECT_TRUE(pasted.italic);
    EXPECT_EQ(pasted.fontSize, 14);

    // A picture another program copied becomes an image object.
    QImage other(30, 20, QImage::Format_RGB32);
    other.fill(Qt::magenta);
    QGuiApplication::clipboard()->setImage(other);
    QTest::keyClick(&m_editor, Qt::Key_V, Qt::ControlModifier);
    ASSERT_EQ(objects().Count(), 4);
    EXPECT_EQ(QSize(object(4).w, object(4).h), QSize(30, 20));

    // Data the editor cannot use is refused in words, and nothing changes.
    auto* foreign = new QMimeData;
    foreign->setData("application/x-spreadsheet", "1;2;3");
    QGuiApplication::clipboard()->setMimeData(foreign);
    const QByteArray before = xml();
    DialogService::queueAnswer(QMessageBox::Ok);
    QTest::keyClick(&m_editor, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(xml(), before);
    EXPECT_FALSE(lastBoxText().isEmpty());
    EXPECT_TRUE(m_editor.menuDescriptor().contains("!Paste;11"));
}

TEST_F(PictureEditorTest, DroppedFilesArePlacedOrHandedOnOrRefused) {
    dropFile(picture("shout.JPG", QSize(20, 10), Qt::red, "JPG"), shown(10, 20));
    ASSERT_EQ(objects().Count(), 1) << "an upper-case extension is a picture";
    EXPECT_EQ(QPoint(object(1).x, object(1).y), QPoint(10, 20)) << "at the drop point";

    QSignalSpy sounds(&m_editor, &ctlPictureEditor::soundDropped);
    const QString tune = dataFile("tune.mid");
    writeFile(tune, "MThd");
    dropFile(tune, shown(50, 50));
    ASSERT_EQ(sounds.count(), 1);
    EXPECT_EQ(sounds[0][1].toString(), "tune.mid");
    EXPECT_EQ(objects().Count(), 1);

    const QByteArray before = xml();
    const QString bare = dataFile("no_extension");
    writeFile(bare, "not a picture at all");
    DialogService::queueAnswer(QMessageBox::Ok);
    dropFile(bare, shown(1, 1));
    EXPECT_EQ(DialogService::answeredBoxes().size(), 1)
        << "a name without a dot is tried as a picture and refused";
    QDir(m_dataHome).mkpath("folder.png");
    DialogService::queueAnswer(QMessageBox::Ok);
    dropFile(dataFile("folder.png"), shown(1, 1));
    EXPECT_TRUE(lastBoxText().contains("folder.png")) << lastBoxText().toStdString();
    EXPECT_EQ(xml(), before);

    // A text drag names the file in its first field.
    QMimeData text;
    text.setText(picture("t.png", QSize(8, 8), Qt::blue) + ";ignored");
    drop(&text, shown(100, 100));
    EXPECT_EQ(objects().Count(), 2);
}

TEST_F(PictureEditorTest, BackgroundsAreAColourOrAPictureDrawnAtTheSlidesSize) {
    DialogService::queueColorAnswer(QColor(0, 0, 255));
    m_editor.runMenuCommand(PictureEditorMenu::BackgroundColor);
    EXPECT_EQ(objects().BackColor(), 0xFF0000) << "blue is stored with red in the low byte";
    DialogService::queueColorAnswer(QColor());
    m_editor.runMenuCommand(PictureEditorMenu::BackgroundColor);
    EXPECT_EQ(objects().BackColor(), 0xFF0000) << "a cancel changes nothing";

    DialogService::queueFileAnswer(picture("wide.png", QSize(400, 100), Qt::darkGreen));
    m_editor.runMenuCommand(PictureEditorMenu::PictureBackground);
    ASSERT_EQ(DialogService::answeredFileDialogs().size(), 1);
    EXPECT_TRUE(DialogService::answeredFileDialogs()[0].folder.endsWith("archive/Backgrounds"))
        << "a first pick starts among the backgrounds the program comes with: "
        << DialogService::answeredFileDialogs()[0].folder.toStdString();
    EXPECT_EQ(DialogService::answeredFileDialogs()[0].filter,
              "Pictures (*.bmp *.gif *.jpg *.jpeg *.png);;All files (*.*)")
        << "patterns as Qt reads them, or the dialog lists no file";
    EXPECT_EQ(objects().BackType(), clsDrawObjects::BackStill);
    const QString bitmap = objects().BackPicture();
    EXPECT_TRUE(bitmap.startsWith("B") && bitmap.endsWith(".bmp")) << bitmap.toStdString();
    EXPECT_EQ(QImage(m_manager.GetWorkFolderPath() + bitmap).size(), QSize(160, 120));
    EXPECT_EQ(QDir(m_manager.GetWorkFolderPath()).entryList({"B*"}, QDir::Files).size(), 1)
        << "only the bitmap stays";

    // An animation as a background, after asking: taken whole, with its length.
    const QString gif = dataFile("blink.gif");
    ASSERT_TRUE(
        runProgram("convert", {"-size", "16x16", "xc:red", "xc:blue", "-loop", "0", gif}).code ==
        0);
    DialogService::queueAnswer(QMessageBox::Cancel);
    EXPECT_FALSE(m_editor.AddBackgroundPicture(gif));
    EXPECT_EQ(objects().BackPicture(), bitmap);
    EXPECT_TRUE(lastBoxText().contains("animated")) << lastBoxText().toStdString();
    DialogService::queueAnswer(QMessageBox::Ok);
    EXPECT_TRUE(m_editor.AddBackgroundPicture(gif));
    EXPECT_EQ(objects().BackType(), clsDrawObjects::BackAnimated);
    EXPECT_TRUE(objects().BackPicture().endsWith(".gif"));
    EXPECT_EQ(readFile(m_manager.GetWorkFolderPath() + objects().BackPicture()), readFile(gif));
    EXPECT_EQ(objects().BackDuration(), 200) << "two frames that ask for no delay";
    EXPECT_EQ(m_editor.RenderImage(QSize(160, 120)).pixelColor(80, 60), QColor(Qt::red));

    DialogService::queueAnswer(QMessageBox::Ok);
    EXPECT_FALSE(m_editor.AddBackgroundPicture(dataFile("vanished.png")));
    EXPECT_EQ(lastBoxText(), "The file cannot be found.");
}

TEST_F(PictureEditorTest, BadPicturesAreRefusedAndTheSlideStaysAsItWas) {
    const QByteArray before = xml();
    writeFile(dataFile("empty.png"), "");
    PhotoSamples::pngClaiming(dataFile("huge.png"), QSize(8000, 5000));
    PhotoSamples::randomBytes(dataFile("noise.jpg"), 5000);
    for (const char* name : {"empty.png", "huge.png", "noise.jpg"}) {
        DialogService::queueAnswer(QMessageBox::Ok);
        EXPECT_FALSE(m_editor.AddImage(dataFile(name))) << name;
        EXPECT_FALSE(lastBoxText().isEmpty()) << name;
        DialogService::queueAnswer(QMessageBox::Ok);
        EXPECT_FALSE(m_editor.AddBackgroundPicture(dataFile(name))) << name;
    }
    EXPECT_EQ(DialogService::answeredBoxes().size(), 6);
    EXPECT_EQ(xml(), before);

    // A real photo of 40 megapixels is no bad input: it comes in at the slide's size.
    const QString photo = dataFile("photo.jpg");
    ASSERT_TRUE(PhotoSamples::gradientJpeg(photo, QSize(8000, 5000)).isEmpty());
    EXPECT_TRUE(m_editor.AddImage(photo));
    EXPECT_EQ(QSize(object(1).w, object(1).h), QSize(160, 100));
    EXPECT_EQ(QDir(m_manager.GetWorkFolderPath()).entryList({"I*", "B*"}, QDir::Files).size(), 1)
        << "nothing refused is left in the work folder";
}

TEST_F(PictureEditorTest, WhatTheEditorShowsIsWhatIsSavedAndRendered) {
    m_editor.AddBackgroundPicture(picture("sky.png", QSize(64, 48), QColor(40, 90, 200)));
    m_editor.AddImage(picture("sun.png", QSize(30, 30), Qt::yellow));
    drag(shown(75, 60), shown(120, 20));
    m_editor.AddImage(picture("grass.png", QSize(160, 20), Qt::darkGreen));
    m_editor.AddText();
    m_editor.ChangeText("Hi there");
    m_editor.SaveDrawObjects();
    DrawObjectProperties styled = object(3);
    styled.bold = true;
    styled.fontSize = 16;
    styled.fontColor = 0xFFFFFF;
    m_editor.ApplyText(styled);
    m_editor.selectObject(0);

    const QString file = dataFile("shown.mms");
    ASSERT_TRUE(m_document.saveMessage(file)) << m_manager.lastError().toStdString();
    const QString info = runProgram(cliProgram(), {"info", file}).out;
    EXPECT_TRUE(info.contains("object 1: image")) << info.toStdString();
    EXPECT_TRUE(info.contains("\"Hi there\"") && info.contains("bold")) << info.toStdString();

    const QImage editorShows =
        m_editor.grab(m_editor.pictureRect()).toImage().convertToFormat(QImage::Format_RGB32);
    const QString rendered = dataFile("rendered.png");
    const ProgramRun run = runProgram(
        cliProgram(), {"render", file, "1", rendered, "--size",
                       QStringLiteral("%1x%2").arg(editorShows.width()).arg(editorShows.height())});
    ASSERT_EQ(run.code, 0) << run.err.toStdString();
    EXPECT_EQ(QImage(rendered).convertToFormat(QImage::Format_RGB32), editorShows)
        << "pixel for pixel";
}

TEST_F(PictureEditorTest, AScreenReaderSeesEachObjectByItsName) {
    m_editor.AddImage(picture("star.png", QSize(20, 20), Qt::red));
    m_editor.AddText();
    m_editor.ChangeText("Happy birthday");
    m_editor.SaveDrawObjects();
    QAccessibleInterface* surface = QAccessible::queryAccessibleInterface(&m_editor);
    ASSERT_NE(surface, nullptr);
    EXPECT_EQ(surface->text(QAccessible::Name), "Slide picture");
    ASSERT_EQ(surface->childCount(), 2);
    EXPECT_EQ(surface->child(0)->text(QAccessible::Name), "star.png");
    EXPECT_EQ(surface->child(0)->role(), QAccessible::Graphic);
    EXPECT_EQ(surface->child(1)->text(QAccessible::Name), "Happy birthday");
    EXPECT_TRUE(surface->child(1)->state().selected);
    m_editor.selectObject(1);
    m_editor.bringSelectedToFront();
    EXPECT_EQ(surface->child(1)->text(QAccessible::Name), "star.png") << "in stacking order";
    EXPECT_EQ(surface->indexOfChild(surface->child(1)), 1);
}
