#pragma once

#include "clsMediaList.h"

#include <QAbstractListModel>
#include <QPixmap>
#include <QStringList>
#include <vector>

class MediaThumbnail;
class ThumbnailLoader;

// The media files of one folder as a list for a browser: each row a file
// name, a thumbnail that arrives when it has been made (a placeholder until
// then), a line of detail, and the reason a file cannot be used. Dragging
// rows carries their files, as a file manager's would, so the slide picture
// takes them where they are dropped.
class MediaFolderModel : public QAbstractListModel {
    Q_OBJECT
public:
    enum Role {
        DetailRole = Qt::UserRole + 1,
        ErrorRole,
        IconNumberRole, // for sounds: the number of the kind's icon
        LoadingRole,
        PathRole,
    };
    // Also carried by a drag: the browser kind the files come from.
    static constexpr const char* KindMimeType = "application/x-vellumo-media-kind";

    explicit MediaFolderModel(QObject* parent = nullptr);

    void setThumbType(int thumbType) { m_thumbType = thumbType; }
    int thumbType() const { return m_thumbType; }
    // ","-separated wildcards, and for sounds one icon number per pattern.
    void setPatterns(const QString& patterns) { m_patterns = patterns; }
    void setIcons(const QString& icons);
    QString patterns() const { return m_patterns; }
    void setThumbnailEdge(int edge) { m_edge = edge; }
    // Reads the folder anew and starts making its thumbnails.
    void load(const QString& folder);
    // The rows in sight are made before the others.
    void prioritize(int first, int last);
    QString folder() const { return m_folder; }
    const clsMediaList& files() const { return m_files; }
    ThumbnailLoader& loader() const { return *m_loader; }

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;

private:
    struct Shown {
        QPixmap picture;
        QString detail;
        QString error;
        bool loading = true;
        int iconNumber = 0;
    };
    void onReady(int row, const MediaThumbnail& thumbnail);
    void assignIcons();
    QString fileNameAt(int row) const;

    int m_thumbType = 2;
    int m_edge = 128;
    QString m_folder;
    QString m_patterns;
    QStringList m_icons;
    clsMediaList m_files;
    std::vector<Shown> m_shown;
    ThumbnailLoader* m_loader;
};
