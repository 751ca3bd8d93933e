#pragma once

#include <QString>
#include <pugixml.hpp>

// Attribute access on the message documents: text in and out as QString, a
// missing attribute reading as "" or 0.
class DomAttributes {
public:
    static QString text(pugi::xml_node node, const char* name);
    static qint64 number(pugi::xml_node node, const char* name);
    static double real(pugi::xml_node node, const char* name);
    static void set(pugi::xml_node node, const char* name, const QString& value);
    static void set(pugi::xml_node node, const char* name, qint64 value);
    // Replaces the document with the parsed text, preceded by the declaration
    // version 1.0, encoding utf-8.
    static void startDocument(pugi::xml_document& document, const char* text);
    // The first child element of that name, created (appended) when missing.
    static pugi::xml_node child(pugi::xml_node parent, const char* name);
};
