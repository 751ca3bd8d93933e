#include "MediaFolderModel.h"

#include "MediaThumbnail.h"
#include "ThumbnailLoader.h"

#include <QFileInfo>
#include <QMimeData>
#include <QRegularExpression>
#include <QUrl>

MediaFolderModel::MediaFolderModel(QObject* parent)
    : QAbstractListModel(parent), m_loader(new ThumbnailLoader(this)) {
    connect(m_loader, &ThumbnailLoader::ready, this, &MediaFolderModel::onReady);
}

void MediaFolderModel::load(const QString& folder) {
    beginResetModel();
    m_loader->newBatch();
    m_folder = folder;
    m_files.LoadFiles(folder, m_patterns);
    m_shown.assign(size_t(m_files.Count()), Shown());
    assignIcons();
    endResetModel();
    int row = 0;
    for (const clsMedia& file : m_files)
        m_loader->request(row++, file.filename(), m_thumbType, m_edge);
}

void MediaFolderModel::prioritize(int first, int last) {
    for (int row = std::max(first, 0); row <= last && size_t(row) < m_shown.size(); ++row)
        if (m_shown[size_t(row)].loading)
            m_loader->request(row, m_files.begin()[row].filename(), m_thumbType, m_edge, 1);
}

void MediaFolderModel::onReady(int row, const MediaThumbnail& thumbnail) {
    if (row < 0 || size_t(row) >= m_shown.size())
        return;
    Shown& shown = m_shown[size_t(row)];
    shown.picture = QPixmap::fromImage(thumbnail.picture);
    shown.detail = thumbnail.detail;
    shown.error = thumbnail.error;
    shown.loading = false;
    const QModelIndex changed = index(row);
    emit dataChanged(changed, changed);
}

int MediaFolderModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : int(m_shown.size());
}

QString MediaFolderModel::fileNameAt(int row) const {
    return QFileInfo(m_files.begin()[row].filename()).fileName();
}

void MediaFolderModel::setIcons(const QString& icons) {
    m_icons = icons.split(u',');
    assignIcons();
}

// The first pattern a name matches decides its icon, so "MH_*.mid" listed
// before "*.mid" gives those files their own.
void MediaFolderModel::assignIcons() {
    QList<QRegularExpression> patterns;
    for (const QString& wildcard : clsMediaList::wildcards(m_patterns))
        patterns << QRegularExpression(QRegularExpression::wildcardToRegularExpression(wildcard),
                                       QRegularExpression::CaseInsensitiveOption);
    for (size_t row = 0; row < m_shown.size(); ++row) {
        const QString name = fileNameAt(int(row));
        const auto first = std::find_if(patterns.begin(), patterns.end(), [&name](const auto& p) {
            return p.match(name).hasMatch();
        });
        m_shown[row].iconNumber =
            first == patterns.end() ? 0 : m_icons.value(first - patterns.begin()).trimmed().toInt();
    }
}

QVariant MediaFolderModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const Shown& shown = m_shown[size_t(index.row())];
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
        return fileNameAt(index.row());
    case Qt::DecorationRole:
        return shown.picture.isNull() ? QVariant() : QVariant(shown.picture);
    case Qt::ToolTipRole:
        return shown.error.isEmpty() ? fileNameAt(index.row()) + u'\n' + shown.detail : shown.error;
    case Qt::AccessibleDescriptionRole:
        return shown.error.isEmpty() ? shown.detail : shown.error;
    case DetailRole:
        return shown.detail;
    case ErrorRole:
        return shown.error;
    case IconNumberRole:
        return shown.iconNumber;
    case LoadingRole:
        return shown.loading;
    case PathRole:
        return m_files.begin()[index.row()].filename();
    default:
        return {};
    }
}

Qt::ItemFlags MediaFolderModel::flags(const QModelIndex& index) const {
    const Qt::ItemFlags base = QAbstractListModel::flags(index);
    return index.isValid() ? base | Qt::ItemIsDragEnabled : base;
}

QStringList MediaFolderModel::mimeTypes() const {
    return {QStringLiteral("text/uri-list"), QLatin1String(KindMimeType)};
}

QMimeData* MediaFolderModel::mimeData(const QModelIndexList& indexes) const {
    QList<QUrl> urls;
    for (const QModelIndex& index : indexes)
        urls << QUrl::fromLocalFile(data(index, PathRole).toString());
    if (urls.isEmpty())
        return nullptr;
    auto* data = new QMimeData;
    data->setUrls(urls);
    data->setData(QLatin1String(KindMimeType), QByteArray::number(m_thumbType));
    return data;
}
