#pragma once

#include <QByteArray>
#include <QString>
#include <pugixml.hpp>

// Attribute access on the message documents: text in and out as QString, a
// missing attribute reading as "" or 0. Text going in is cleaned of what XML
// cannot carry (XmlText).
class DomAttributes {
public:
    static QString text(pugi::xml_node node, const char* name);
    static qint64 number(pugi::xml_node node, const char* name);
    static double real(pugi::xml_node node, const char* name);
    static void set(pugi::xml_node node, const char* name, const QString& value);
    static void set(pugi::xml_node node, const char* name, qint64 value);
    // The node's text content.
    static void setText(pugi::xml_node node, const QString& value);
    // Cleans every attribute and text below node, for documents read from
    // files that may hold what was never written through set().
    static void cleanTree(pugi::xml_node node);
    // Replaces the document with the parsed text, preceded by the declaration
    // version 1.0, encoding utf-8.
    static void startDocument(pugi::xml_document& document, const char* text);
    // The document as UTF-8 text.
    static QByteArray bytes(const pugi::xml_document& document, const char* indent, unsigned flags);
    // Writes the document as UTF-8 through AtomicFile; false with *why when not.
    static bool save(const pugi::xml_document& document, const QString& path,
                     QString* why = nullptr);
    // The first child element of that name, created (appended) when missing.
    static pugi::xml_node child(pugi::xml_node parent, const char* name);
};
