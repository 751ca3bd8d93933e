#include "AppGlobals.h"

#include "AppPaths.h"
#include "clsPropertiesXML.h"
#include "clsXMLocalizer.h"

namespace {
struct State {
    std::unique_ptr<clsPropertiesXML> settings;
    std::unique_ptr<clsXMLocalizer> localizer;
    std::uint32_t userLcid = 0x0409;
    QString commandLine;
    QString helpFile;
};

State& state() {
    static State instance;
    return instance;
}
} // namespace

clsPropertiesXML* AppGlobals::settings() {
    return state().settings.get();
}

void AppGlobals::installSettings(std::unique_ptr<clsPropertiesXML> settings) {
    state().localizer.reset();
    state().settings = std::move(settings);
}

QString AppGlobals::programArchive() {
    return AppPaths::programArchive(setting("paths", "archive", QStringLiteral("\\archive\\")));
}

QString AppGlobals::setting(const QString& section, const QString& key,
                            const QString& defaultValue) {
    clsPropertiesXML* store = settings();
    return store ? store->GetProp(section, key, defaultValue) : defaultValue;
}

clsXMLocalizer* AppGlobals::localizer() {
    return state().localizer.get();
}

void AppGlobals::installLocalizer(std::unique_ptr<clsXMLocalizer> localizer) {
    state().localizer = std::move(localizer);
}

QString AppGlobals::text(const QString& key, const QString& fallback) {
    const QString localized = localizer() ? localizer()->GetString(key) : QString();
    return localized.isEmpty() ? fallback : localized;
}

QString AppGlobals::text(const QString& key, const QString& fallback,
                         const QStringList& parameters) {
    QString localized = localizer() ? localizer()->GetStringPar(key, parameters) : QString();
    if (!localized.isEmpty())
        return localized;
    localized = fallback;
    localized.replace(QLatin1String("%n"), QLatin1String("\r\n"));
    for (qsizetype i = 0; i < parameters.size(); ++i)
        localized.replace(QLatin1Char('%') + QString::number(i), parameters[i]);
    return localized;
}

std::uint32_t AppGlobals::userLcid() {
    return state().userLcid;
}
void AppGlobals::setUserLcid(std::uint32_t lcid) {
    state().userLcid = lcid;
}

QString AppGlobals::commandLine() {
    return state().commandLine;
}
void AppGlobals::setCommandLine(const QString& line) {
    state().commandLine = line;
}

QString AppGlobals::helpFile() {
    return state().helpFile;
}
void AppGlobals::setHelpFile(const QString& path) {
    state().helpFile = path;
}

void AppGlobals::shutdown() {
    state().localizer.reset();
    state().settings.reset();
}
