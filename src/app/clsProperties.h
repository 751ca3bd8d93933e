#pragma once

#include <QString>
#include <QStringList>

// Section/key values in an old-style INI file. The program only reads such a
// file once, to move its values into the XML settings. Reads are cut the way
// fixed-size profile buffers cut them: 255 characters for one value, 4,094 for
// a list of section names or of a section's lines.
class clsProperties {
public:
    clsProperties();

    QString IniFileName() const { return m_iniFileName; }
    void setIniFileName(const QString& fileName) { m_iniFileName = fileName; }
    void SetDefaultIniFileName();

    QString GetProp(const QString& section, const QString& key, const QString& defaultValue) const;
    bool SetProp(const QString& section, const QString& key, const QString& value);
    QStringList GetSections() const;
    QStringList GetPropList(const QString& section) const;
    bool SetPropList(const QString& section, const QStringList& lines);

    static constexpr int kValueBuffer = 256;
    static constexpr int kListBuffer = 4096;

private:
    QString m_iniFileName;
};
