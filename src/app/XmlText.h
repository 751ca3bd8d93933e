#pragma once

#include <QString>

// Text that goes into an XML document. XML 1.0 has no way to carry most
// control characters, not even as character references: strict readers
// (phones among them) refuse a file holding "&#7;". So they are dropped on the
// way in, wherever the text came from; tabs and line breaks stay.
class XmlText {
public:
    static QString clean(const QString& text);
    // True when clean() would change nothing.
    static bool isClean(const QString& text);
};
