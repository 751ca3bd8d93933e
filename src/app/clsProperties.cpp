#include "clsProperties.h"

#include "AppPaths.h"
#include "IniDocument.h"

namespace {
// A double-NUL terminated list in a buffer of the given size: when it does not
// fit, the text is cut so that two NULs still end the buffer, and the last
// name comes back shortened.
QStringList cutList(const QStringList& items, int bufferSize) {
    QString packed;
    for (const QString& item : items)
        packed += item + QChar(0);
    if (packed.size() > bufferSize - 2)
        packed.truncate(bufferSize - 2);
    if (packed.endsWith(QChar(0)))
        packed.chop(1);
    return packed.isEmpty() ? QStringList() : packed.split(QChar(0));
}
} // namespace

clsProperties::clsProperties() {
    SetDefaultIniFileName();
}

void clsProperties::SetDefaultIniFileName() {
    m_iniFileName = AppPaths::programFolder() + AppPaths::executableBaseName() + ".ini";
}

QString clsProperties::GetProp(const QString& section, const QString& key,
                               const QString& defaultValue) const {
    const IniDocument document = IniDocument::load(AppPaths::toDisk(m_iniFileName));
    return document.value(section, key).value_or(defaultValue).left(kValueBuffer - 1);
}

bool clsProperties::SetProp(const QString& section, const QString& key, const QString& value) {
    IniDocument document = IniDocument::load(AppPaths::toDisk(m_iniFileName));
    document.setValue(section, key, value);
    return document.save(AppPaths::toDisk(m_iniFileName));
}

QStringList clsProperties::GetSections() const {
    return cutList(IniDocument::load(AppPaths::toDisk(m_iniFileName)).sectionNames(), kListBuffer);
}

QStringList clsProperties::GetPropList(const QString& section) const {
    const IniDocument document = IniDocument::load(AppPaths::toDisk(m_iniFileName));
    return cutList(document.sectionLines(section), kListBuffer);
}

bool clsProperties::SetPropList(const QString& section, const QStringList& lines) {
    IniDocument document = IniDocument::load(AppPaths::toDisk(m_iniFileName));
    document.replaceSection(section, lines);
    return document.save(AppPaths::toDisk(m_iniFileName));
}
