#pragma once

#include <QColor>
#include <QString>
#include <QStringList>
#include <ostream>

// Readable failure messages for Qt strings in GoogleTest assertions.
inline void PrintTo(const QString& text, std::ostream* os) {
    *os << '"' << text.toStdString() << '"';
}
inline void PrintTo(const QStringList& list, std::ostream* os) {
    *os << '{';
    for (const QString& item : list)
        *os << '"' << item.toStdString() << "\" ";
    *os << '}';
}
inline void PrintTo(const QColor& colour, std::ostream* os) {
    *os << colour.name().toStdString();
}
