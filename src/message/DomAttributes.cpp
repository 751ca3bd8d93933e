#include "DomAttributes.h"

#include <algorithm>
#include <cmath>
#include <limits>

QString DomAttributes::text(pugi::xml_node node, const char* name) {
    return QString::fromUtf8(node.attribute(name).value());
}

qint64 DomAttributes::number(pugi::xml_node node, const char* name) {
    // Stored numbers are whole and 32-bit; a value written with a fraction keeps
    // its whole part, and one out of range is held at the end of the range.
    const double value = std::clamp(real(node, name), double(std::numeric_limits<qint32>::min()),
                                    double(std::numeric_limits<qint32>::max()));
    return static_cast<qint64>(value);
}

double DomAttributes::real(pugi::xml_node node, const char* name) {
    bool ok = false;
    const double value = text(node, name).trimmed().toDouble(&ok);
    return ok && std::isfinite(value) ? value : 0.0;
}

void DomAttributes::set(pugi::xml_node node, const char* name, const QString& value) {
    pugi::xml_attribute attribute = node.attribute(name);
    if (!attribute)
        attribute = node.append_attribute(name);
    attribute.set_value(value.toUtf8().constData());
}

void DomAttributes::set(pugi::xml_node node, const char* name, qint64 value) {
    set(node, name, QString::number(value));
}

pugi::xml_node DomAttributes::child(pugi::xml_node parent, const char* name) {
    pugi::xml_node node = parent.child(name);
    return node ? node : parent.append_child(name);
}

void DomAttributes::startDocument(pugi::xml_document& document, const char* text) {
    document.reset();
    document.load_string(text);
    pugi::xml_node declaration =
        document.insert_child_before(pugi::node_declaration, document.first_child());
    declaration.append_attribute("version") = "1.0";
    declaration.append_attribute("encoding") = "utf-8";
}
