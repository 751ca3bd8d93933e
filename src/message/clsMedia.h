#pragma once

#include <QImage>
#include <QString>

// A media file of a folder, as the media browser lists it.
class clsMedia {
public:
    explicit clsMedia(QString fileName = QString()) : m_filename(std::move(fileName)) {}

    QString filename() const { return m_filename; }
    void setFilename(const QString& fileName) { m_filename = fileName; }
    // A loaded picture or thumbnail of the file; null until someone loads it.
    const QImage& Picture() const { return m_picture; }
    void setPicture(const QImage& picture) { m_picture = picture; }

private:
    QString m_filename;
    QImage m_picture;
};
