#pragma once

#include <QByteArray>
#include <QString>

// Text files of presentations written elsewhere: a byte order mark says the
// encoding; without one the bytes are UTF-8 when they are valid UTF-8, else
// the Western Windows code page, which is what older phones and PC tools wrote.
class TextDecoding {
public:
    static QString decode(const QByteArray& bytes);
    static QString windows1252(const QByteArray& bytes);
};
