#include "PkgLineCursor.h"

namespace {
bool isWordChar(QChar c) {
    return c.isLetterOrNumber() || c == u'_';
}
} // namespace

void PkgLineCursor::skipSpaces() {
    while (m_pos < m_line.size() && m_line.at(m_pos).isSpace())
        ++m_pos;
}

void PkgLineCursor::fail(const QString& expected) const {
    if (m_pos >= m_line.size())
        throw PkgSyntaxError{QStringLiteral("expected %1 at the end of the line").arg(expected)};
    throw PkgSyntaxError{
        QStringLiteral("expected %1 at '%2'").arg(expected, m_line.mid(m_pos, 12).trimmed())};
}

bool PkgLineCursor::atEnd() {
    skipSpaces();
    return m_pos >= m_line.size() || m_line.at(m_pos) == u';';
}

void PkgLineCursor::expectEnd() {
    if (!atEnd())
        fail(QStringLiteral("the end of the line"));
}

bool PkgLineCursor::peek(QChar c) {
    skipSpaces();
    return m_pos < m_line.size() && m_line.at(m_pos) == c;
}

bool PkgLineCursor::accept(QChar c) {
    if (!peek(c))
        return false;
    ++m_pos;
    return true;
}

void PkgLineCursor::expect(QChar c, const QString& what) {
    if (!accept(c))
        fail(what);
}

QString PkgLineCursor::quoted(const QString& what) {
    expect(u'"', what);
    const qsizetype close = m_line.indexOf(u'"', m_pos);
    if (close < 0)
        throw PkgSyntaxError{QStringLiteral("unterminated quoted string in %1").arg(what)};
    const QString text = m_line.mid(m_pos, close - m_pos);
    m_pos = close + 1;
    return text;
}

QStringList PkgLineCursor::quotedList(const QString& what) {
    expect(u'{', QStringLiteral("'{' before %1").arg(what));
    QStringList list{quoted(what)};
    while (!accept(u'}')) {
        accept(u',');
        if (!peek(u'"'))
            fail(QStringLiteral("'}' after %1").arg(what));
        list << quoted(what);
    }
    return list;
}

quint32 PkgLineCursor::number(const QString& what, quint32 max) {
    skipSpaces();
    qsizetype end = m_pos;
    while (end < m_line.size() && isWordChar(m_line.at(end)))
        ++end;
    const QString text = m_line.mid(m_pos, end - m_pos);
    const bool hex = text.startsWith(QLatin1String("0x"), Qt::CaseInsensitive);
    bool ok = false;
    const qulonglong value = hex ? text.mid(2).toULongLong(&ok, 16) : text.toULongLong(&ok, 10);
    if (!ok)
        fail(what);
    if (value > max)
        throw PkgSyntaxError{QStringLiteral("%1 is too large for %2").arg(text, what)};
    m_pos = end;
    return quint32(value);
}

quint32 PkgLineCursor::uidInParentheses() {
    const QString what = QStringLiteral("a UID in parentheses");
    expect(u'(', what);
    const quint32 uid = number(what, 0xFFFFFFFFu);
    expect(u')', what);
    return uid;
}

QString PkgLineCursor::word(const QString& what) {
    skipSpaces();
    const qsizetype start = m_pos;
    while (m_pos < m_line.size() && isWordChar(m_line.at(m_pos)))
        ++m_pos;
    if (m_pos == start)
        fail(what);
    return m_line.mid(start, m_pos - start);
}
