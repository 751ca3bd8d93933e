#include "XmlText.h"

#include <QList>

namespace {
bool allowed(char32_t c) {
    if (c < 0x20)
        return c == 0x09 || c == 0x0a || c == 0x0d;
    return (c <= 0xd7ff) || (c >= 0xe000 && c <= 0xfffd) || (c >= 0x10000 && c <= 0x10ffff);
}
} // namespace

QString XmlText::clean(const QString& text) {
    if (isClean(text))
        return text;
    QString result;
    result.reserve(text.size());
    // Decoding to code points also drops halves of surrogate pairs standing alone.
    for (const char32_t c : text.toUcs4())
        if (allowed(c))
            result.append(QString::fromUcs4(&c, 1));
    return result;
}

bool XmlText::isClean(const QString& text) {
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c.isHighSurrogate() && i + 1 < text.size() && text.at(i + 1).isLowSurrogate()) {
            ++i;
            continue;
        }
        if (c.isSurrogate() || !allowed(c.unicode()))
            return false;
    }
    return true;
}
