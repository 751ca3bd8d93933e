#include "DomAttributes.h"

#include "AtomicFile.h"
#include "XmlText.h"

#include <QByteArray>

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
    attribute.set_value(XmlText::clean(value).toUtf8().constData());
}

void DomAttributes::setText(pugi::xml_node node, const QString& value) {
    node.text() = XmlText::clean(value).toUtf8().constData();
}

void DomAttributes::cleanTree(pugi::xml_node node) {
    for (pugi::xml_attribute attribute : node.attributes()) {
        const QString value = QString::fromUtf8(attribute.value());
        if (!XmlText::isClean(value))
            attribute.set_value(XmlText::clean(value).toUtf8().constData());
    }
    for (pugi::xml_node child : node.children()) {
        if (child.type() == pugi::node_pcdata || child.type() == pugi::node_cdata) {
            const QString value = QString::fromUtf8(child.value());
            if (!XmlText::isClean(value))
                child.set_value(XmlText::clean(value).toUtf8().constData());
        } else {
            cleanTree(child);
        }
    }
}

void DomAttributes::set(pugi::xml_node node, const char* name, qint64 value) {
    set(node, name, QString::number(value));
}

pugi::xml_node DomAttributes::child(pugi::xml_node parent, const char* name) {
    pugi::xml_node node = parent.child(name);
    return node ? node : parent.append_child(name);
}

namespace {
struct ByteWriter : pugi::xml_writer {
    QByteArray bytes;
    void write(const void* data, size_t size) override {
        bytes.append(static_cast<const char*>(data), qsizetype(size));
    }
};
} // namespace

QByteArray DomAttributes::bytes(const pugi::xml_document& document, const char* indent,
                                unsigned flags) {
    ByteWriter writer;
    document.save(writer, indent, flags, pugi::encoding_utf8);
    return writer.bytes;
}

bool DomAttributes::save(const pugi::xml_document& document, const QString& path, QString* why) {
    return AtomicFile::writeFile(path, bytes(document, "  ", pugi::format_default), why);
}

void DomAttributes::startDocument(pugi::xml_document& document, const char* text) {
    document.reset();
    document.load_string(text);
    pugi::xml_node declaration =
        document.insert_child_before(pugi::node_declaration, document.first_child());
    declaration.append_attribute("version") = "1.0";
    declaration.append_attribute("encoding") = "utf-8";
}
