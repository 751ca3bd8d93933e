#include "IniMigration.h"

#include "AppPaths.h"
#include "Clock.h"
#include "SettingsBootstrap.h"
#include "clsProperties.h"
#include "clsPropertiesXML.h"

#include <QFile>
#include <exception>

namespace {
bool copySections(const clsProperties& ini, clsPropertiesXML& settings) {
    try {
        for (const QString& section : ini.GetSections()) {
            if (section.compare(QLatin1String("this"), Qt::CaseInsensitive) == 0)
                continue;
            for (const QString& line : ini.GetPropList(section)) {
                QString key = line.section(QLatin1Char('='), 0, 0);
                QString value = line.section(QLatin1Char('='), 1);
                if (key == QLatin1String("LanguageID")) {
                    key = QStringLiteral("Language");
                    value = IniMigration::languageCodeFor(settings, value);
                }
                settings.SetProp(section, key, value);
            }
        }
        return true;
    } catch (const std::exception&) {
        return false;
    }
}
} // namespace

bool IniMigration::run(clsPropertiesXML& settings) {
    clsProperties ini;
    const QString iniPath = AppPaths::toDisk(ini.IniFileName());
    if (!QFile::exists(iniPath))
        return false;
    const bool deleteAfter = ini.GetProp("this", "Delete", "0") == QLatin1String("1");
    const bool log = ini.GetProp("this", "Log", "0") == QLatin1String("1");
    const bool copied = copySections(ini, settings);
    if (log) {
        const QString stamp = Clock::instance().now().toString(QStringLiteral("yyMMdd_HHmmss"));
        settings.SetProp("AutoUpdate", "U_" + stamp, copied ? "OK" : "ERROR");
    }
    if (deleteAfter) {
        QFile::setPermissions(iniPath, QFile::permissions(iniPath) | QFile::WriteOwner);
        QFile::remove(iniPath);
    }
    return true;
}

QString IniMigration::languageCodeFor(clsPropertiesXML& settings, const QString& languageId) {
    bool ok = false;
    const unsigned id = languageId.startsWith(QLatin1Char('H')) ? languageId.mid(1).toUInt(&ok, 16)
                                                                : languageId.toUInt(&ok, 10);
    if (ok) {
        for (const unsigned candidate : {id & 0xFFFFu, id & 0x3FFu}) {
            const QString code = SettingsBootstrap::languageCodeForId(settings, candidate);
            if (!code.isEmpty() && SettingsBootstrap::isLanguageInstalled(settings, code))
                return code;
        }
    }
    return QStringLiteral("en-us");
}
