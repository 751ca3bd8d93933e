#pragma once

#include <QByteArray>
#include <QString>

// Text and XML made by other programs, whatever encoding they were saved in.
class TextDecoder {
public:
    // A plain text file: in the charset named for it when that is one we know;
    // else by its byte-order mark (UTF-8, UTF-16 LE or BE); else UTF-8 when the
    // bytes are valid UTF-8; else the Western Windows code page, which older
    // programs wrote and whose quotes and euro sign Latin-1 lacks. UTF-16 named
    // without its byte order ("utf-16", UCS-2) and written without a mark is
    // read in the order its zero bytes show, big-endian when they show none.
    static QString decode(const QByteArray& bytes, const QString& charset = QString());

    // An XML document as UTF-8 bytes, for a parser told to read UTF-8: decoded
    // by its byte-order mark, by how "<?" is laid out when UTF-16 has none, or
    // by the encoding its declaration names (UTF-8 when it names none). Empty,
    // with *why, when the declaration names an encoding we cannot read.
    static QByteArray xmlAsUtf8(const QByteArray& bytes, QString* why = nullptr);

    // The charset parameter of a MIME type ("text/plain; charset=utf-16"), "".
    static QString charsetOf(const QString& mimeType);
};
