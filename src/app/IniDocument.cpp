#include "IniDocument.h"

#include "TextDecoder.h"

#include <QFile>

namespace {
bool isComment(const QString& line) {
    const QString trimmed = line.trimmed();
    return trimmed.isEmpty() || trimmed.startsWith(QLatin1Char(';'));
}

QString keyOf(const QString& line) {
    return line.section(QLatin1Char('='), 0, 0).trimmed();
}

// Values written in matching quotes are read without them.
QString valueOf(const QString& line) {
    QString value = line.section(QLatin1Char('='), 1).trimmed();
    if (value.size() >= 2 &&
        (value.front() == QLatin1Char('"') || value.front() == QLatin1Char('\'')) &&
        value.back() == value.front())
        value = value.mid(1, value.size() - 2);
    return value;
}
} // namespace

IniDocument IniDocument::load(const QString& path) {
    IniDocument document;
    document.m_sections.append(Section{});
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return document;
    QStringList lines = TextDecoder::decode(file.readAll()).split(QLatin1Char('\n'));
    if (!lines.isEmpty() && lines.last().isEmpty())
        lines.removeLast(); // the end of the last line, not a line of its own
    for (QString line : lines) {
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        const QString trimmed = line.trimmed();
        if (trimmed.startsWith(QLatin1Char('[')) && trimmed.endsWith(QLatin1Char(']')))
            document.m_sections.append(Section{trimmed.mid(1, trimmed.size() - 2).trimmed(), {}});
        else
            document.m_sections.last().lines.append(line);
    }
    return document;
}

bool IniDocument::save(const QString& path) const {
    QString text;
    for (const Section& section : m_sections) {
        if (!section.name.isEmpty())
            text += QLatin1Char('[') + section.name + QStringLiteral("]\r\n");
        for (const QString& line : section.lines)
            text += line + QStringLiteral("\r\n");
    }
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Truncate) &&
           file.write(text.toUtf8()) == text.toUtf8().size();
}

QStringList IniDocument::sectionNames() const {
    QStringList names;
    for (const Section& section : m_sections)
        if (!section.name.isEmpty())
            names << section.name;
    return names;
}

QStringList IniDocument::sectionLines(const QString& name) const {
    QStringList lines;
    if (const Section* section = findSection(name))
        for (const QString& line : section->lines)
            if (!isComment(line))
                lines << keyOf(line) + QLatin1Char('=') + valueOf(line);
    return lines;
}

std::optional<QString> IniDocument::value(const QString& name, const QString& key) const {
    if (const Section* section = findSection(name))
        for (const QString& line : section->lines)
            if (!isComment(line) && keyOf(line).compare(key, Qt::CaseInsensitive) == 0)
                return valueOf(line);
    return std::nullopt;
}

void IniDocument::setValue(const QString& name, const QString& key, const QString& value) {
    Section& section = sectionForWriting(name);
    const QString newLine = key + QLatin1Char('=') + value;
    for (QString& line : section.lines) {
        if (!isComment(line) && keyOf(line).compare(key, Qt::CaseInsensitive) == 0) {
            line = newLine;
            return;
        }
    }
    qsizetype at = section.lines.size();
    while (at > 0 && section.lines[at - 1].trimmed().isEmpty())
        --at;
    section.lines.insert(at, newLine);
}

void IniDocument::replaceSection(const QString& name, const QStringList& lines) {
    sectionForWriting(name).lines = lines;
}

IniDocument::Section* IniDocument::findSection(const QString& name) {
    for (Section& section : m_sections)
        if (!section.name.isEmpty() && section.name.compare(name, Qt::CaseInsensitive) == 0)
            return &section;
    return nullptr;
}

const IniDocument::Section* IniDocument::findSection(const QString& name) const {
    return const_cast<IniDocument*>(this)->findSection(name);
}

IniDocument::Section& IniDocument::sectionForWriting(const QString& name) {
    if (Section* section = findSection(name))
        return *section;
    m_sections.append(Section{name, {}});
    return m_sections.last();
}
