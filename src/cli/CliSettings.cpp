#include "CliSettings.h"

#include "AppGlobals.h"
#include "SettingsBootstrap.h"
#include "clsPropertiesXML.h"
#include "clsXMLocalizer.h"

CliSettings::CliSettings() {
    AppGlobals::installSettings(SettingsBootstrap::openAndPrepare());
    AppGlobals::installLocalizer(clsXMLocalizer::forChosenLanguage(*AppGlobals::settings()));
}

CliSettings::~CliSettings() {
    AppGlobals::shutdown();
}
