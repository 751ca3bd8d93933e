#pragma once

#include <QHash>
#include <QPixmap>
#include <QStyledItemDelegate>

// Draws a media file as a browser shows it: its thumbnail (or a sound's
// icon, or a mark for a file that cannot be used) in a frame of the
// browser's thumbnail size, its name under it and a line of detail.
class MediaThumbDelegate : public QStyledItemDelegate {
public:
    // How a picture fills the frame: stretched to it, or whole and centred.
    enum StretchMode { Stretch = 0, KeepRatio = 1 };

    explicit MediaThumbDelegate(QObject* parent = nullptr);

    void setThumbSize(QSize size) { m_thumb = size; }
    QSize thumbSize() const { return m_thumb; }
    void setStretchMode(int mode) { m_stretch = mode; }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

    // The icon a sound kind is drawn with (one per icon number of the
    // sound browser's list), drawn here so it matches any theme.
    static QPixmap soundIcon(int number, int edge);

private:
    void paintPicture(QPainter* painter, const QRect& frame, const QModelIndex& index) const;
    static void paintMark(QPainter* painter, const QRect& frame, const QString& mark,
                          const QColor& colour);

    QSize m_thumb{96, 72};
    int m_stretch = KeepRatio;
};
