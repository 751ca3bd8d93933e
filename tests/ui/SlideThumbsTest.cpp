#include "SlideListModel.h"
#include "TempDataHome.h"
#include "clsMMSManager.h"
#include "clsPopupMenu.h"
#include "ctlSlideThumbs.h"

#include <QAccessible>
#include <QApplication>
#include <QContextMenuEvent>
#include <QMenu>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>

namespace {
// The action a user reaches by the captions on the way, as "Delete/Sound".
QAction* findAction(QMenu& menu, const QString& path) {
    const QString first = path.section(u'/', 0, 0);
    for (QAction* action : menu.actions()) {
        if (action->text() != first)
            continue;
        if (!path.contains(u'/'))
            return action;
        return action->menu() ? findAction(*action->menu(), path.section(u'/', 1)) : nullptr;
    }
    return nullptr;
}

constexpr qint64 kRed = 0x0000ff, kGreen = 0x00ff00, kBlue = 0xff0000;

class SlideThumbsTest : public TempDataHome {
protected:
    void SetUp() override {
        TempDataHome::SetUp();
        m_manager.InitializeAt(dataFile("work"), dataFile("archive"), "message.xml");
        clsMessage* message = m_manager.CreateMsg();
        const std::pair<qint64, qint64> slides[] = {{kRed, 3000}, {kGreen, 2500}, {kBlue, 1000}};
        for (const auto& [colour, duration] : slides) {
            clsSlide& slide = message->Slides().Add();
            slide.setColor(colour);
            slide.setDuration(duration);
        }
        m_strip.resize(160, 400);
        m_strip.DrawThumbs(message);
        m_strip.show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(&m_strip));
    }

    QColor thumbnailCentre(int slide) const {
        const QImage picture = m_strip.slideModel()
                                   ->index(slide - 1)
                                   .data(Qt::DecorationRole)
                                   .value<QPixmap>()
                                   .toImage();
        return picture.pixelColor(picture.rect().center());
    }

    QMimeData* dragOf(int slide) const {
        return m_strip.slideModel()->mimeData({m_strip.slideModel()->index(slide - 1)});
    }

    clsMMSManager m_manager;
    ctlSlideThumbs m_strip;
};
} // namespace

TEST_F(SlideThumbsTest, EachSlideShowsItsPictureNumberAndTime) {
    SlideListModel* model = m_strip.slideModel();
    ASSERT_EQ(model->rowCount(), 3);
    EXPECT_EQ(thumbnailCentre(1), QColor(Qt::red));
    EXPECT_EQ(thumbnailCentre(3), QColor(Qt::blue));
    EXPECT_EQ(model->index(1).data(Qt::DisplayRole).toString(), "2\n2.5s");

    // A changed slide keeps its old thumbnail until it is drawn anew.
    m_manager.message()->Slides().Item(2).setColor(kBlue);
    EXPECT_EQ(thumbnailCentre(2), QColor(Qt::green));
    m_strip.DrawThumb(2);
    EXPECT_EQ(thumbnailCentre(2), QColor(Qt::blue));
}

TEST_F(SlideThumbsTest, AScreenReaderSeesTheSlidesInOrder) {
    QAccessibleInterface* list = QAccessible::queryAccessibleInterface(&m_strip);
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->text(QAccessible::Name), "Slides");
    QStringList names;
    for (int i = 0; i < list->childCount(); ++i)
        names << list->child(i)->text(QAccessible::Name);
    EXPECT_EQ(names, QStringList(
                         {"Slide 1, 3.0 seconds", "Slide 2, 2.5 seconds", "Slide 3, 1.0 seconds"}));
}

TEST_F(SlideThumbsTest, TheKeyboardWalksChoosesAndDeletes) {
    QSignalSpy chosen(&m_strip, &ctlSlideThumbs::slideSelected);
    QSignalSpy commands(&m_strip, &ctlSlideThumbs::menuCommand);
    m_strip.SelectSlide(1);
    EXPECT_EQ(chosen.count(), 0) << "the window's own choice is no user's";
    m_strip.setFocus();
    QTest::keyClick(&m_strip, Qt::Key_Down);
    QTest::keyClick(&m_strip, Qt::Key_End);
    QTest::keyClick(&m_strip, Qt::Key_Home);
    ASSERT_EQ(chosen.count(), 3);
    EXPECT_EQ(chosen[0][0].toInt(), 2);
    EXPECT_EQ(chosen[1][0].toInt(), 3);
    EXPECT_EQ(chosen[2][0].toInt(), 1);
    QTest::keyClick(&m_strip, Qt::Key_Delete);
    ASSERT_EQ(commands.count(), 1);
    EXPECT_EQ(commands[0][0].toInt(), int(ctlSlideThumbs::DeleteSlide));
    EXPECT_EQ(commands[0][1].toInt(), 1);
}

TEST_F(SlideThumbsTest, DroppingAThumbnailAsksToMoveItsSlide) {
    SlideListModel* model = m_strip.slideModel();
    QSignalSpy moves(model, &SlideListModel::moveRequested);
    const auto drop = [&](int slide, int row, const QModelIndex& onto) {
        std::unique_ptr<QMimeData> data(dragOf(slide));
        EXPECT_FALSE(model->dropMimeData(data.get(), Qt::MoveAction, row, 0, onto))
            << "the model itself never moves";
    };
    drop(1, -1, QModelIndex());   // below the last
    drop(3, -1, model->index(0)); // onto the first
    drop(1, 2, QModelIndex());    // between the second and third
    drop(2, 1, QModelIndex());    // where it already is
    ASSERT_EQ(moves.count(), 3);
    EXPECT_EQ(moves[0], QList<QVariant>({1, 3}));
    EXPECT_EQ(moves[1], QList<QVariant>({3, 1}));
    EXPECT_EQ(moves[2], QList<QVariant>({1, 2}));

    QMimeData foreign;
    foreign.setData(SlideListModel::MimeType, "7");
    EXPECT_FALSE(model->canDropMimeData(&foreign, Qt::MoveAction, 0, 0, {}));
}

TEST_F(SlideThumbsTest, TheRightClickMenuActsOnTheSlideUnderTheMouse) {
    QSignalSpy commands(&m_strip, &ctlSlideThumbs::menuCommand);
    const auto rightClick = [&](int slide, const QString& path) {
        clsPopupMenu::queueChoice([path](QMenu& menu) { return findAction(menu, path); });
        const QPoint at = slide > 0
                              ? m_strip.visualRect(m_strip.model()->index(slide - 1, 0)).center()
                              : QPoint(5, m_strip.viewport()->height() - 5);
        QContextMenuEvent event(QContextMenuEvent::Mouse, at, m_strip.viewport()->mapToGlobal(at));
        QApplication::sendEvent(m_strip.viewport(), &event);
    };
    rightClick(2, "Duplicate/After");
    rightClick(3, "Delete/Sound");
    rightClick(0, "Add");
    rightClick(0, "Delete/Slide"); // no slide under the mouse: only Add is offered
    m_strip.setRightClickMenuEnabled(false);
    rightClick(1, "Add"); // while the preview plays nothing is
    ASSERT_EQ(commands.count(), 3);
    EXPECT_EQ(commands[0], QList<QVariant>({int(ctlSlideThumbs::DuplicateAfter), 2}));
    EXPECT_EQ(commands[1], QList<QVariant>({int(ctlSlideThumbs::DeleteSound), 3}));
    EXPECT_EQ(commands[2], QList<QVariant>({int(ctlSlideThumbs::AddSlide), 0}));
    clsPopupMenu::clear();
}
