#include "DroppedMedia.h"
#include "PictureEditorMenu.h"
#include "SelectionFrame.h"

#include <QMimeData>
#include <QTemporaryDir>
#include <QUrl>
#include <gtest/gtest.h>

// The editor's rules that need no window: resizing by handles, what a
// dragged file is, and menu captions that cannot break the menu.

TEST(SelectionFrameTest, HandlesResizeFromTheOppositeEdgeAndNeverBelowTheMinimum) {
    const QRect start(10, 20, 40, 30);
    using F = SelectionFrame;
    EXPECT_EQ(F::resized(start, F::BottomRight, {5, 7}, false), QRect(10, 20, 45, 37));
    EXPECT_EQ(F::resized(start, F::TopLeft, {5, 7}, false), QRect(15, 27, 35, 23))
        << "the right and bottom edges stay put";
    EXPECT_EQ(F::resized(start, F::Top, {9, -4}, false), QRect(10, 16, 40, 34))
        << "an edge handle moves only its edge";
    EXPECT_EQ(F::resized(start, F::Left, {100, 0}, false), QRect(46, 20, 4, 30))
        << "dragged past the other side it stops at the minimum";
    EXPECT_EQ(F::resized(start, F::BottomRight, {-100, -100}, false).size(), QSize(4, 4));
}

TEST(SelectionFrameTest, ShiftKeepsTheProportions) {
    const QRect start(0, 0, 40, 30);
    using F = SelectionFrame;
    EXPECT_EQ(F::resized(start, F::BottomRight, {20, 1}, true), QRect(0, 0, 60, 45));
    EXPECT_EQ(F::resized(start, F::TopLeft, {-20, -1}, true), QRect(-20, -15, 60, 45))
        << "growing up and left, the lower right corner stays";
    EXPECT_EQ(F::resized(start, F::Bottom, {0, 60}, true), QRect(0, 0, 120, 90));
}

TEST(SelectionFrameTest, EachHandleIsFoundWhereItIsDrawn) {
    const QRectF shown(100, 100, 80, 60);
    const QList<QRectF> squares = SelectionFrame::handles(shown);
    ASSERT_EQ(squares.size(), SelectionFrame::kHandleCount);
    for (int i = 0; i < squares.size(); ++i)
        EXPECT_EQ(SelectionFrame::handleAt(shown, squares[i].center()), SelectionFrame::Handle(i));
    EXPECT_EQ(SelectionFrame::handleAt(shown, shown.center()), SelectionFrame::None);
    EXPECT_EQ(squares[SelectionFrame::Right].center(), QPointF(180, 130));
}

TEST(DroppedMediaTest, TheExtensionIsLookedForInsideTheJoinedLists) {
    using D = DroppedMedia;
    EXPECT_EQ(D::extensionOf("/home/a.b/photo.JPG"), ".JPG");
    EXPECT_EQ(D::extensionOf("/home/a.b/README"), "") << "a dotted folder gives no extension";
    EXPECT_EQ(D::kindOf("/x/photo.JPG"), D::Picture);
    EXPECT_EQ(D::kindOf("/x/photo.jp"), D::Picture) << "part of .jpg";
    EXPECT_EQ(D::kindOf("/x/README"), D::Picture) << "no extension at all";
    EXPECT_EQ(D::kindOf("/x/tune.MI"), D::Sound);
    EXPECT_EQ(D::kindOf("/x/voice.amr"), D::Sound);
    EXPECT_EQ(D::kindOf("/x/letter.doc"), D::Unknown);
    EXPECT_EQ(D::kindOf("/x/clip.wav"), D::Unknown) << "sounds are taken as the window knows them";
    QTemporaryDir folder;
    EXPECT_EQ(D::kindOf(folder.path()), D::Folder);

    QMimeData text;
    text.setText("/pictures/cat.png;B;42");
    EXPECT_EQ(D::pathFrom(text), "/pictures/cat.png");
    QMimeData urls;
    urls.setUrls({QUrl("https://example.org/a.png"), QUrl::fromLocalFile("/tmp/b.png")});
    EXPECT_EQ(D::pathFrom(urls), "/tmp/b.png") << "only a local file can be added";
}

TEST(PictureEditorMenuTest, ObjectCaptionsCannotSplitOrMarkMenuItems) {
    using M = PictureEditorMenu;
    EXPECT_EQ(M::itemCaption("Hi, there; you | me! #1"),
              QString::fromUtf8("Hi， there； you ｜ me！ ＃1"));
    EXPECT_EQ(M::itemCaption("-"), " -") << "a text of one hyphen is no separator";
    EXPECT_EQ(M::itemCaption("two\r\nlines"), "two lines");
    EXPECT_EQ(M::itemCaption(QString(60, u'x')).size(), 40);

    M menu;
    menu.TranslateControl();
    M::State state;
    state.objects.append({true, 1, "a,b", true});
    const QString descriptor = menu.descriptor(state);
    EXPECT_TRUE(descriptor.endsWith(QString::fromUtf8("|#a，b;201"))) << descriptor.toStdString();
    EXPECT_EQ(M::keys().size(), 19);
}
