#pragma once

#include "SmilExporter.h"

#include <QList>
#include <QString>

class clsMMSManager;
class clsMessage;

// A message as it would be sent: its SMIL set exported into a folder and
// packed as the binary MMS, whose size is the size that travels.
class SendForm {
public:
    struct Part {
        QString name;
        QString path;
    };

    // Writes the send form into folder (which must exist); false with
    // error() saying why.
    bool write(clsMMSManager& manager, clsMessage& message, const QString& folder);
    // An already packed message and the files that went into it.
    void assign(qint64 bytes, QList<Part> parts);

    qint64 bytes() const { return m_bytes; }
    const QList<Part>& parts() const { return m_parts; }
    // Which parts each slide that went out became, in slide order.
    const QList<SmilExporter::SlideFiles>& slides() const { return m_slides; }
    QString packedPath() const { return m_packed; }
    QString error() const { return m_error; }

private:
    qint64 m_bytes = 0;
    QList<Part> m_parts;
    QList<SmilExporter::SlideFiles> m_slides;
    QString m_packed;
    QString m_error;
};
