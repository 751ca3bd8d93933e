#pragma once

#include <QHash>
#include <QString>

// The folder of a presentation and the files its src values name there.
// Other programs write those values as URIs ("my%20photo.jpg",
// "cid:image1.jpg"), in another letter case than the file has (made where
// case does not matter), or with folders that were unpacked flat
// ("pics/p.jpg"). Whatever the value, only a regular file of this folder,
// reached without a link, is ever given back.
class MediaFolder {
public:
    explicit MediaFolder(const QString& folder);

    // The path of the file source names: the value as written, then with its
    // percent escapes decoded; each by its exact name, then ignoring letter
    // case, then by its last path segment the same two ways. "" with *why
    // when none fits, or when the file that fits may not be read.
    QString resolve(const QString& source, QString* why = nullptr) const;

private:
    QString find(const QString& name, QString* why) const;
    QString byName(const QString& name) const;

    QString m_folder;
    QHash<QString, QString> m_byFoldedName; // case-folded name -> name on disk
};
