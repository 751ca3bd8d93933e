#pragma once

#include <QString>
#include <pugixml.hpp>

// Attribute access on the message document: text in and out as QString, a
// missing attribute reading as "" or 0.
class DomAttributes {
public:
    static QString text(pugi::xml_node node, const char* name);
    static qint64 number(pugi::xml_node node, const char* name);
    static double real(pugi::xml_node node, const char* name);
    static void set(pugi::xml_node node, const char* name, const QString& value);
    static void set(pugi::xml_node node, const char* name, qint64 value);
    // The first child element of that name, created (appended) when missing.
    static pugi::xml_node child(pugi::xml_node parent, const char* name);
};
