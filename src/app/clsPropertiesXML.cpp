#include "clsPropertiesXML.h"

#include "AppPaths.h"

#include <QByteArray>

namespace {
std::string utf8(const QString& text) {
    return text.toStdString();
}
QString fromUtf8(const char* text) {
    return QString::fromUtf8(text);
}

// The first child's text, the way the store reads a KEY's value.
QString firstChildValue(pugi::xml_node key) {
    return fromUtf8(key.first_child().value());
}

QStringList childNames(pugi::xml_node parent, const char* elementName) {
    QStringList names;
    for (pugi::xml_node child : parent.children(elementName))
        names << fromUtf8(child.attribute("name").value());
    return names;
}
} // namespace

clsPropertiesXML::clsPropertiesXML() {
    SetDefaultXmlFileName();
    SetDefaultApplicationName();
}

clsPropertiesXML::~clsPropertiesXML() {
    if (m_dirty)
        SaveXmlFile();
}

bool clsPropertiesXML::Initialize(const QString& fileName, const QString& applicationName) {
    if (m_initialized)
        return true;
    if (!fileName.isEmpty())
        m_xmlFileName = fileName;
    if (!applicationName.isEmpty())
        m_applicationName = applicationName.toLower();
    loadDocument();
    selectApplication();
    m_initialized = true;
    return m_initialized;
}

void clsPropertiesXML::Reset() {
    m_initialized = false;
}

void clsPropertiesXML::setXmlFileName(const QString& fileName) {
    if (m_initialized)
        return;
    m_xmlFileName = fileName;
    // Nothing may have been loaded yet; the new file then starts from an empty store.
    if (!m_document.document_element())
        startEmptyDocument();
    if (!m_application)
        selectApplication();
    m_initialized = true;
}

void clsPropertiesXML::setApplicationName(const QString& name) {
    if (name.isEmpty())
        return;
    m_applicationName = name.toLower();
    if (m_initialized)
        selectApplication();
}

void clsPropertiesXML::SetDefaultXmlFileName() {
    if (!m_initialized)
        m_xmlFileName = AppPaths::programFolder() + AppPaths::executableBaseName() + ".xml";
}

void clsPropertiesXML::SetDefaultApplicationName() {
    if (!m_initialized)
        m_applicationName = AppPaths::executableBaseName().toLower();
}

QStringList clsPropertiesXML::GetApplicationNodes() const {
    return childNames(m_document.child("APPLICATIONS"), "APPLICATION");
}

QStringList clsPropertiesXML::GetSectionNodes() {
    ensureInitialized();
    return childNames(m_sections, "SECTION");
}

QStringList clsPropertiesXML::GetKeyNodes(const QString& section) {
    ensureInitialized();
    return childNames(findSection(section), "KEY");
}

bool clsPropertiesXML::SaveXmlFile() {
    const bool saved =
        m_document.save_file(AppPaths::toDisk(m_xmlFileName).toLocal8Bit().constData(), "  ",
                             pugi::format_default, pugi::encoding_utf8);
    // A failed write is not reported to the user; the caller sees the result.
    if (saved)
        m_dirty = false;
    return saved;
}

QString clsPropertiesXML::GetProp(const QString& section, const QString& key,
                                  const QString& defaultValue) {
    ensureInitialized();
    const pugi::xml_node node = findKey(section, key);
    if (node && node.first_child())
        return firstChildValue(node);
    return defaultValue;
}

bool clsPropertiesXML::SetProp(const QString& section, const QString& key, const QString& value) {
    ensureInitialized();
    pugi::xml_node sectionNode = findSection(section);
    if (!sectionNode) {
        sectionNode = m_sections.append_child("SECTION");
        sectionNode.append_attribute("name") = utf8(section).c_str();
    }
    if (key.isEmpty())
        return false;
    pugi::xml_node keyNode = findKey(section, key);
    if (!keyNode) {
        keyNode = sectionNode.append_child("KEY");
        keyNode.append_attribute("name") = utf8(key).c_str();
        keyNode.text() = utf8(value).c_str();
        m_dirty = true;
        return true;
    }
    if (keyNode.first_child()) {
        if (firstChildValue(keyNode) == value)
            return false;
        keyNode.first_child().set_value(utf8(value).c_str());
    } else {
        keyNode.text() = utf8(value).c_str();
    }
    m_dirty = true;
    return true;
}

bool clsPropertiesXML::GetPropList(const QString& section, QStringList& list,
                                   const QString& separator) {
    ensureInitialized();
    list.clear();
    const pugi::xml_node sectionNode = findSection(section);
    for (pugi::xml_node child : sectionNode.children())
        list << fromUtf8(child.attribute("name").value()) + separator + firstChildValue(child);
    return static_cast<bool>(sectionNode);
}

bool clsPropertiesXML::SetPropList(const QString& section, const QStringList& list,
                                   const QString& separator) {
    bool changed = false;
    for (const QString& element : list) {
        const QStringList parts = element.split(separator);
        if (parts.size() == 2)
            changed = SetProp(section, parts[0], parts[1]) || changed;
    }
    return changed;
}

void clsPropertiesXML::DeleteApplication() {
    ensureInitialized();
    m_document.child("APPLICATIONS").remove_child(m_application);
    m_application = pugi::xml_node();
    m_sections = pugi::xml_node();
    m_dirty = true;
}

void clsPropertiesXML::DeletePropSection(const QString& section) {
    ensureInitialized();
    if (m_sections.remove_child(findSection(section)))
        m_dirty = true;
}

void clsPropertiesXML::DeleteProp(const QString& section, const QString& key) {
    ensureInitialized();
    if (findSection(section).remove_child(findKey(section, key)))
        m_dirty = true;
}

void clsPropertiesXML::ensureInitialized() {
    if (!m_initialized)
        Initialize(QString(), QString());
}

void clsPropertiesXML::loadDocument() {
    const pugi::xml_parse_result result =
        m_document.load_file(AppPaths::toDisk(m_xmlFileName).toLocal8Bit().constData(),
                             pugi::parse_default | pugi::parse_declaration, pugi::encoding_utf8);
    m_startedEmpty = !result || !m_document.child("APPLICATIONS");
    if (m_startedEmpty)
        startEmptyDocument();
}

void clsPropertiesXML::startEmptyDocument() {
    m_document.reset();
    m_document.load_string("<APPLICATIONS>\r\n</APPLICATIONS>");
    pugi::xml_node declaration =
        m_document.insert_child_before(pugi::node_declaration, m_document.document_element());
    declaration.append_attribute("version") = "1.0";
    declaration.append_attribute("encoding") = "utf-8";
}

void clsPropertiesXML::selectApplication() {
    m_application =
        selectRelative(m_document, "APPLICATIONS/APPLICATION[@name='" + m_applicationName + "']");
    if (!m_application) {
        m_application = m_document.child("APPLICATIONS").append_child("APPLICATION");
        m_application.append_attribute("name") = utf8(m_applicationName).c_str();
    }
    m_sections = m_application.child("SECTIONS");
    if (!m_sections)
        m_sections = m_application.append_child("SECTIONS");
}

pugi::xml_node clsPropertiesXML::findSection(const QString& section) const {
    return selectRelative(m_application, "SECTIONS/SECTION[@name='" + section + "']");
}

pugi::xml_node clsPropertiesXML::findKey(const QString& section, const QString& key) const {
    return selectRelative(m_application,
                          "SECTIONS/SECTION[@name='" + section + "']/KEY[@name='" + key + "']");
}

pugi::xml_node clsPropertiesXML::selectRelative(pugi::xml_node from, const QString& path) const {
    if (!from)
        return {};
    try {
        return from.select_node(utf8(path).c_str()).node();
    } catch (const pugi::xpath_exception&) {
        // A name with a quote in it breaks the query; such names never match.
        return {};
    }
}
