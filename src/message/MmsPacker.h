#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

class QDir;
class AtomicFile;

// Writes a message's exported SMIL set as one binary MMS (the MMS encapsulation:
// WSP-encoded headers and a multipart/related body with the SMIL as start part).
// It keeps the two entry points of the packer library the message manager calls:
// the MIME table is registered first, then one call packs the file list.
//
// Every listed file becomes a part, in list order after the SMIL, named by its
// Content-ID "<name>" and Content-Location "name" so the SMIL's src values find
// them; text parts say that they are UTF-8. Slide texts (Slide1.txt ...) are
// parts too, as an MMS has no other place for them; only the texts index
// "texts.xml" is left out, it exists for the template and package formats and
// repeats those texts.
class MmsPacker {
public:
    enum class MessageType { SendRequest, RetrieveConfirmation }; // m-send-req or m-retrieve-conf

    // Results of both entry points: 0 is success, anything above a failure.
    enum Result : int {
        Success = 0,
        NoSmil = 1,         // the list names no file of type application/smil
        FileUnreadable = 2, // a listed file is missing, no regular file, or cannot be read
        WriteFailed = 3,    // the output could not be written
        NoMimeType = 4,     // a listed file's extension has no registered MIME type
        BadArgument = 5,    // an unusable registration
        TooLarge = 6,       // a part longer than the encoding can declare
    };

    // Registers (or replaces) the MIME type of a file extension ("jpg", any case,
    // with or without the dot). flag is there for the library's signature and must be 0.
    int _RegisterMimeType(const QString& extension, const QString& mimeType, int flag);
    void clearMimeTypes();

    // Writes folder/outputName from the ";"-separated files of folder with the
    // message name as Subject. The file is written under a temporary name beside
    // the target and renamed when complete, so a failure leaves no file behind.
    int _Pack(const QString& folder, const QString& outputName, const QString& fileList,
              const QString& messageName);

    // The names of a file list that become parts, in list order: each once,
    // without the texts index.
    static QStringList partNames(const QString& fileList);

    void setMessageType(MessageType type);
    // Why the last call failed; empty after success.
    QString lastError() const;

private:
    struct Part {
        QString name;
        QString path;
        QString mimeType;
        qint64 size = 0;
    };

    int collectParts(const QDir& folder, const QString& fileList, QList<Part>* parts);
    int checkPart(Part* part);
    QByteArray messageHeaders(const QString& messageName, const Part& start) const;
    int writeMessage(const QString& target, const QByteArray& headers, const QList<Part>& parts);
    int writePart(AtomicFile* out, const Part& part);
    int fail(int result, const QString& reason);

    QHash<QString, QString> m_mimeTypes; // lower-case extension without dot -> MIME type
    MessageType m_messageType = MessageType::SendRequest;
    QString m_lastError;
};
