#include "TextDecoder.h"

#include <QStringDecoder>

QString TextDecoder::utf8OrLatin1(const QByteArray& bytes) {
    QStringDecoder utf8(QStringDecoder::Utf8);
    const QString text = utf8.decode(bytes);
    return utf8.hasError() ? QString::fromLatin1(bytes) : text;
}
