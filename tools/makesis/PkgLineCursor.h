#pragma once

#include <QString>
#include <QStringList>

// Thrown by PkgLineCursor when a line does not have the expected shape; the
// parser adds the line number.
struct PkgSyntaxError {
    QString message;
};

// Reads the pieces of one .pkg line left to right. Spaces between pieces
// are free; a ';' outside quotes starts a comment that ends the line.
class PkgLineCursor {
public:
    explicit PkgLineCursor(const QString& line) : m_line(line) {}

    // True when only spaces or a comment are left.
    bool atEnd();
    void expectEnd();
    bool peek(QChar c);
    bool accept(QChar c);
    void expect(QChar c, const QString& what);

    // "text": the characters up to the next quote.
    QString quoted(const QString& what);
    // {"a","b"} or {"a" "b"}: at least one quoted string.
    QStringList quotedList(const QString& what);
    // A decimal or 0x hexadecimal number no greater than max.
    quint32 number(const QString& what, quint32 max);
    // (0x12345678)
    quint32 uidInParentheses();
    // A run of letters, digits and underscores.
    QString word(const QString& what);

private:
    void skipSpaces();
    [[noreturn]] void fail(const QString& expected) const;

    QString m_line;
    qsizetype m_pos = 0;
};
