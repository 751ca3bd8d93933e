#pragma once

#include <QHash>
#include <QString>
#include <optional>
#include <pugixml.hpp>

// The text of a document another program wrote, with its references resolved
// here rather than by the parser (parse it without pugi::parse_escapes): the
// general entities it declares in its own DOCTYPE are expanded, while one
// that points at an outside file is never fetched and stays as it is written.
class XmlEntities {
public:
    // How a document must be parsed for this class to read it.
    static constexpr unsigned kParseOptions =
        (pugi::parse_default | pugi::parse_doctype) & ~pugi::parse_escapes;

    explicit XmlEntities(const pugi::xml_document& document);

    // raw with its character references, the five predefined entities and the
    // declared ones resolved; an unknown reference is kept as written.
    QString resolve(const char* raw) const;
    // All text below node in document order, CDATA sections included: a
    // comment or processing instruction inside does not end it.
    QString textOf(const pugi::xml_node& node) const;

private:
    QString expand(const QString& raw, int depth, qsizetype& budget) const;
    std::optional<QString> replacement(const QString& name, int depth, qsizetype& budget) const;

    QHash<QString, QString> m_declared;
};
