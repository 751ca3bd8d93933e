#include "ctlSlideThumbs.h"

#include "AppGlobals.h"
#include "SlideListModel.h"
#include "SlideMenuDescriptor.h"
#include "clsPopupMenu.h"

#include <QContextMenuEvent>
#include <QKeyEvent>

ctlSlideThumbs::ctlSlideThumbs(QWidget* parent)
    : QListView(parent), m_model(new SlideListModel(this)) {
    setObjectName(QStringLiteral("ctlSlideThumbs"));
    setModel(m_model);
    setFlow(QListView::TopToBottom);
    setWrapping(false);
    setIconSize(m_model->thumbnailSize());
    setSpacing(4);
    setUniformItemSizes(true);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setDragDropMode(QAbstractItemView::DragDrop);
    setDefaultDropAction(Qt::MoveAction);
    setDropIndicatorShown(true);
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current) { onCurrentChanged(current); });
    connect(m_model, &SlideListModel::moveRequested, this, &ctlSlideThumbs::moveRequested);
    TranslateControl();
}

void ctlSlideThumbs::TranslateControl() {
    setAccessibleName(AppGlobals::text("STR_SLIDES", "Slides"));
}

void ctlSlideThumbs::DrawThumbs(const clsMessage* message) {
    const int selected = selectedSlide();
    m_model->setMessage(message);
    SelectSlide(std::min(selected, m_model->rowCount()));
}

void ctlSlideThumbs::DrawThumb(int slide) {
    m_model->refreshSlide(slide);
}

void ctlSlideThumbs::ScrollToEnd() {
    scrollToBottom();
}

void ctlSlideThumbs::SelectSlide(int slide) {
    const QModelIndex index = m_model->index(slide - 1);
    m_selecting = true;
    if (index.isValid()) {
        selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
        scrollTo(index);
    } else {
        selectionModel()->clear();
    }
    m_selecting = false;
}

int ctlSlideThumbs::selectedSlide() const {
    const QModelIndex current = currentIndex();
    return current.isValid() ? current.row() + 1 : 0;
}

void ctlSlideThumbs::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Delete && selectedSlide() > 0) {
        emit menuCommand(DeleteSlide, selectedSlide());
        return;
    }
    QListView::keyPressEvent(event);
}

QString ctlSlideThumbs::menuDescriptor(bool forSlide) const {
    return SlideMenuDescriptor::build(
        0,
        [this, forSlide](int number) { return m_menuEnabled && (forSlide || number == AddSlide); },
        true);
}

// From the mouse the menu is for the slide under it; from the keyboard (the
// menu key, Shift+F10) for the chosen slide.
void ctlSlideThumbs::contextMenuEvent(QContextMenuEvent* event) {
    const QModelIndex at =
        event->reason() == QContextMenuEvent::Mouse ? indexAt(event->pos()) : currentIndex();
    const int slide = at.isValid() ? at.row() + 1 : 0;
    const QPoint position = at.isValid() && event->reason() != QContextMenuEvent::Mouse
                                ? viewport()->mapToGlobal(visualRect(at).center())
                                : event->globalPos();
    const int command =
        clsPopupMenu(this).PopupStringXY(menuDescriptor(slide > 0), position.x(), position.y());
    if (command > 0)
        emit menuCommand(command, slide);
}

void ctlSlideThumbs::onCurrentChanged(const QModelIndex& current) {
    if (!m_selecting && current.isValid())
        emit slideSelected(current.row() + 1);
}
