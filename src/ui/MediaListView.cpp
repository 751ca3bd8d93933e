#include "MediaListView.h"

#include <QDrag>
#include <QPainter>

MediaListView::MediaListView(QWidget* parent) : QListView(parent) {
    setViewMode(QListView::IconMode);
    setResizeMode(QListView::Adjust);
    setMovement(QListView::Static);
    setUniformItemSizes(true);
    setWordWrap(false);
    setSpacing(2);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setDragEnabled(true);
    setDragDropMode(QAbstractItemView::DragOnly);
    setDefaultDropAction(Qt::CopyAction);
}

void MediaListView::setEmptyText(const QString& text) {
    m_emptyText = text;
    viewport()->update();
}

void MediaListView::paintEvent(QPaintEvent* event) {
    QListView::paintEvent(event);
    if (model() && model()->rowCount() > 0)
        return;
    QPainter painter(viewport());
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(viewport()->rect().adjusted(12, 12, -12, -12),
                     Qt::AlignCenter | Qt::TextWordWrap, m_emptyText);
}

void MediaListView::startDrag(Qt::DropActions supportedActions) {
    const QModelIndexList chosen = selectedIndexes();
    if (chosen.isEmpty())
        return;
    auto* drag = new QDrag(this);
    drag->setMimeData(model()->mimeData(chosen));
    const QPixmap thumbnail = chosen.first().data(Qt::DecorationRole).value<QPixmap>();
    if (!thumbnail.isNull())
        drag->setPixmap(thumbnail.scaled(64, 64, Qt::KeepAspectRatio, Qt::SmoothTransformation));
    drag->exec(supportedActions & Qt::CopyAction ? Qt::CopyAction : supportedActions);
}
