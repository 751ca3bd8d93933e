#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

// Reads back the parts of a binary MMS: the message headers are stepped over
// by their generic value encoding, then each part of the multipart body gives
// its name (Content-Location) and its data.
class MmsPartReader {
public:
    struct Part {
        QString name;
        QByteArray data;
    };

    // False, with error() saying where, when bytes is no binary MMS this
    // reader can follow; parts() then holds what was read before.
    bool read(const QByteArray& bytes);
    const QList<Part>& parts() const { return m_parts; }
    QString error() const { return m_error; }

private:
    bool skipValue();
    bool uintvar(quint32& value);
    QByteArray textString();
    bool readPart();
    bool fail(const QString& why);

    QByteArray m_bytes;
    qsizetype m_at = 0;
    QList<Part> m_parts;
    QString m_error;
};
