#pragma once

#include <QString>
#include <QStringList>
#include <pugixml.hpp>

// The program's settings: string values addressed by section and key in an XML
// file (APPLICATIONS/APPLICATION/SECTIONS/SECTION/KEY). Missing applications,
// sections and keys are created on demand, so callers always pass a default.
class clsPropertiesXML {
public:
    clsPropertiesXML();
    ~clsPropertiesXML();
    clsPropertiesXML(const clsPropertiesXML&) = delete;
    clsPropertiesXML& operator=(const clsPropertiesXML&) = delete;

    bool Initialize(const QString& fileName, const QString& applicationName);
    void Reset();

    QString XmlFileName() const { return m_xmlFileName; }
    // Only while not initialized; then the store counts as initialized with the
    // document in memory, which the next save writes under the new name.
    void setXmlFileName(const QString& fileName);
    QString ApplicationName() const { return m_applicationName; }
    void setApplicationName(const QString& name);
    void SetDefaultXmlFileName();
    void SetDefaultApplicationName();

    QStringList GetApplicationNodes() const;
    QStringList GetSectionNodes();
    QStringList GetKeyNodes(const QString& section);

    bool SaveXmlFile();

    QString GetProp(const QString& section, const QString& key, const QString& defaultValue);
    bool SetProp(const QString& section, const QString& key, const QString& value);
    bool GetPropList(const QString& section, QStringList& list, const QString& separator);
    bool SetPropList(const QString& section, const QStringList& list, const QString& separator);

    void DeleteApplication();
    void DeletePropSection(const QString& section);
    void DeleteProp(const QString& section, const QString& key);

    bool isInitialized() const { return m_initialized; }
    bool isDirty() const { return m_dirty; }
    // The last Initialize found no usable settings file and started empty.
    bool startedEmpty() const { return m_startedEmpty; }

private:
    void ensureInitialized();
    void loadDocument();
    void startEmptyDocument();
    void selectApplication();
    pugi::xml_node findSection(const QString& section) const;
    pugi::xml_node findKey(const QString& section, const QString& key) const;
    pugi::xml_node selectRelative(pugi::xml_node from, const QString& path) const;

    QString m_xmlFileName;
    QString m_applicationName;
    bool m_initialized = false;
    bool m_dirty = false;
    bool m_startedEmpty = false;
    pugi::xml_document m_document;
    pugi::xml_node m_application;
    pugi::xml_node m_sections;
};
