#pragma once

#include <QListView>

// The thumbnails of a browser. An empty folder says what to do instead of
// showing nothing, and a dragged file shows its own thumbnail under the
// pointer.
class MediaListView : public QListView {
public:
    explicit MediaListView(QWidget* parent = nullptr);

    void setEmptyText(const QString& text);

protected:
    void paintEvent(QPaintEvent* event) override;
    void startDrag(Qt::DropActions supportedActions) override;

private:
    QString m_emptyText;
};
