#pragma once

#include "WspReader.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

// Reads a binary MMS: the message headers it has a use for (type, Subject,
// From, Content-Type with the start and type of a multipart), stepping over
// every other by its generic value encoding, then the parts of the multipart
// body with their content type, charset, Content-ID, Content-Location and
// data. The parts of a multipart inside it take its place, in order; a body
// that is no multipart is the message's one part.
class MmsPartReader {
public:
    // The values of X-Mms-Message-Type that carry content.
    enum MessageType { SendRequest = 0x80, RetrieveConfirmation = 0x84 };

    struct Part {
        QString name;      // Content-Location, as written
        QString contentId; // without its angle brackets
        WspReader::ContentType type;
        QByteArray data;
    };

    // A Content-ID as a header, a start parameter or a "cid:" source writes
    // it, without its angle brackets.
    static QString bareContentId(QString id);
    // Whether bytes begin as an m-send-req or m-retrieve-conf does: the
    // message type is the first header.
    static bool looksLikeMessage(const QByteArray& bytes);

    // False, with error() saying where, when bytes is no binary MMS this
    // reader can follow; parts() then holds what was read before.
    bool read(const QByteArray& bytes);
    const QList<Part>& parts() const { return m_parts; }
    QString error() const { return m_error; }
    // What was left out without stopping the reading: parts whose headers
    // cannot be read, parts nested too deep.
    const QStringList& problems() const { return m_problems; }

    int messageType() const { return m_messageType; }
    QString subject() const { return m_subject; }
    // The sender's address; "" when the sender leaves it to the relay.
    QString from() const { return m_from; }
    const WspReader::ContentType& contentType() const { return m_contentType; }

private:
    bool readHeaders(WspReader& in);
    bool readHeader(WspReader& in, quint8 field);
    bool readFrom(WspReader& in);
    bool readMultipart(WspReader& in, int depth);
    bool readEntry(WspReader& in, int depth);
    bool readNested(const Part& container, WspReader& data, int depth);
    static bool readPartHeaders(WspReader& in, Part& part);
    static bool readPartHeader(WspReader& in, const QString& field, Part& part);
    bool fail(const QString& why);

    QByteArray m_bytes;
    QList<Part> m_parts;
    QString m_error;
    QStringList m_problems;
    int m_entries = 0;
    int m_messageType = -1;
    QString m_subject;
    QString m_from;
    WspReader::ContentType m_contentType;
};
