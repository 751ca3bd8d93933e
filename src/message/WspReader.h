#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>

// Reads the value encodings of binary MMS headers (WSP) from a stretch of the
// bytes of a file, never past the stretch's end. A reading function gives
// false, with error() saying what and at which byte of the file, when the
// bytes end early or break the encoding; the position is then undefined.
class WspReader {
public:
    struct ContentType {
        QString mediaType; // lower case; "" for a number this program does not know
        QString charset;   // the charset parameter, a lower-case name
        QString start;     // the start parameter of a multipart/related, as written
        QString type;      // the type parameter of a multipart/related
        QString name;      // the name parameter
    };

    explicit WspReader(const QByteArray& bytes) : WspReader(bytes, 0, bytes.size()) {}
    WspReader(const QByteArray& bytes, qsizetype begin, qsizetype end);

    bool atEnd() const { return m_at >= m_end; }
    qsizetype position() const { return m_at; }
    // The next byte without taking it; 0 at the end.
    quint8 peek() const;
    bool byte(quint8& value);
    bool skip(qsizetype count);
    // A reader of the next count bytes, which this one steps over.
    bool take(qsizetype count, WspReader* part);
    // The bytes from here to the end of the stretch, which this one steps over.
    QByteArray rest();

    // A value-length and a reader of the value it measures, which this one steps over.
    bool withLength(WspReader* value);
    bool uintvar(quint32& value);
    // A short or long integer.
    bool integer(quint64& value);
    // A text-string or quoted-string, without its quote and terminating 0x00.
    bool textString(QByteArray& text);
    // A plain text-string, or a value-length with a charset and the text.
    bool encodedString(QString& text);
    // A well-known media number, a media type as text, or either of them with
    // parameters inside a value-length.
    bool contentType(ContentType& type);
    // Any value, by its first byte: a short integer, a length and as many
    // bytes, or a string.
    bool skipValue();

    QString error() const { return m_error; }

private:
    struct Value {
        bool isInteger = false;
        quint64 integer = 0;
        QByteArray text;
    };

    bool valueLength(quint32& length);
    bool value(Value& value);
    bool parameter(ContentType& type);
    bool parameterValue(const QString& name, ContentType& type);
    bool endsEarly();
    bool badValue();
    bool adopt(const WspReader& part);

    const QByteArray* m_bytes;
    qsizetype m_at;
    qsizetype m_end;
    QString m_error;
};
