#include "SlideListModel.h"

#include "AppGlobals.h"
#include "SlideRenderer.h"
#include "VbFormat.h"
#include "clsMessage.h"

#include <QMimeData>

SlideListModel::SlideListModel(QObject* parent) : QAbstractListModel(parent) {}

void SlideListModel::setMessage(const clsMessage* message) {
    m_message = message;
    refresh();
}

void SlideListModel::setThumbnailSize(QSize size) {
    m_thumbnail = size;
    refresh();
}

void SlideListModel::refresh() {
    beginResetModel();
    m_cache.clear();
    endResetModel();
}

void SlideListModel::refreshSlide(int slide) {
    const QModelIndex changed = index(slide - 1);
    if (!changed.isValid())
        return;
    m_cache.remove(slide - 1);
    emit dataChanged(changed, changed);
}

int SlideListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() || !m_message ? 0 : m_message->Slides().Count();
}

QVariant SlideListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const int number = index.row() + 1;
    switch (role) {
    case Qt::DisplayRole:
        return QString::number(number) + u'\n' + duration(index.row()) + u's';
    case Qt::DecorationRole:
        return thumbnail(index.row());
    case Qt::AccessibleTextRole:
    case Qt::ToolTipRole:
        return AppGlobals::text("STR_SLIDE_THUMB", "Slide %0, %1 seconds",
                                {QString::number(number), duration(index.row())});
    default:
        return {};
    }
}

Qt::ItemFlags SlideListModel::flags(const QModelIndex& index) const {
    const Qt::ItemFlags base = QAbstractListModel::flags(index);
    return index.isValid() ? base | Qt::ItemIsDragEnabled : base | Qt::ItemIsDropEnabled;
}

QMimeData* SlideListModel::mimeData(const QModelIndexList& indexes) const {
    if (indexes.isEmpty())
        return nullptr;
    auto* data = new QMimeData;
    data->setData(MimeType, QByteArray::number(indexes.first().row() + 1));
    return data;
}

bool SlideListModel::canDropMimeData(const QMimeData* data, Qt::DropAction, int, int,
                                     const QModelIndex&) const {
    const int slide = draggedSlide(data);
    return slide >= 1 && slide <= rowCount();
}

// Dropped on a slide, the dragged one takes its place; dropped between two,
// it goes between them; dropped below the last, it becomes the last.
bool SlideListModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                                  const QModelIndex& parent) {
    if (!canDropMimeData(data, action, row, column, parent))
        return false;
    const int from = draggedSlide(data);
    int before = row >= 0 ? row : parent.isValid() ? parent.row() : rowCount();
    int to = before + 1;
    if (from <= before)
        --to; // counted after the dragged slide is taken out
    to = std::clamp(to, 1, rowCount());
    if (to != from)
        emit moveRequested(from, to);
    // The document moves the slide and this model is refreshed from it.
    return false;
}

QPixmap SlideListModel::thumbnail(int row) const {
    const auto cached = m_cache.constFind(row);
    if (cached != m_cache.constEnd())
        return *cached;
    const clsSlide& slide = m_message->Slides().Item(row + 1);
    const QSize surface = SlideRenderer::surfaceFromSettings();
    const QSize size = surface.scaled(m_thumbnail, Qt::KeepAspectRatio);
    const QImage picture =
        slide.image().isNull()
            ? SlideRenderer(m_message->Path(), surface).render(slide.DrawObjects(), size)
            : slide.image().scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const QPixmap pixmap = QPixmap::fromImage(picture);
    m_cache.insert(row, pixmap);
    return pixmap;
}

QString SlideListModel::duration(int row) const {
    return VbFormat::format(double(m_message->Slides().Item(row + 1).Duration()) / 1000.0, "#0.0");
}

int SlideListModel::draggedSlide(const QMimeData* data) {
    bool ok = false;
    const int slide = data ? data->data(MimeType).toInt(&ok) : 0;
    return ok ? slide : 0;
}
