#pragma once

#include <QAbstractListModel>
#include <QHash>
#include <QPixmap>
#include <QSize>

class clsMessage;

// The slides of a message as a list: each row a thumbnail of the slide
// picture, its number and its duration. Thumbnails are painted once and kept
// until the slide changes, and only for the rows a view asks for. Dropping a
// dragged slide does not move anything here: it asks for the move, which the
// document makes as one step that can be undone.
class SlideListModel : public QAbstractListModel {
    Q_OBJECT
public:
    static constexpr const char* MimeType = "application/x-vellumo-slide";

    explicit SlideListModel(QObject* parent = nullptr);

    // The message shown; nullptr for none. The model reads it, never changes it.
    void setMessage(const clsMessage* message);
    void setThumbnailSize(QSize size);
    QSize thumbnailSize() const { return m_thumbnail; }
    // All rows anew (slides added, removed or moved).
    void refresh();
    // One slide's thumbnail and texts anew (1-based, as slides are counted).
    void refreshSlide(int slide);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }
    QStringList mimeTypes() const override { return {MimeType}; }
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;

signals:
    // Slide from (1-based) should become slide to (1-based, counted after
    // taking it out).
    void moveRequested(int from, int to);

private:
    QPixmap thumbnail(int row) const;
    QString duration(int row) const;
    static int draggedSlide(const QMimeData* data);

    const clsMessage* m_message = nullptr;
    QSize m_thumbnail{96, 72};
    mutable QHash<int, QPixmap> m_cache;
};
