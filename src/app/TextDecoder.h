#pragma once

#include <QByteArray>
#include <QString>

// Text files from older programs and other tools: UTF-8 when the bytes are
// UTF-8, else the Western Windows code page's Latin-1 part, never a failure.
class TextDecoder {
public:
    static QString utf8OrLatin1(const QByteArray& bytes);
};
