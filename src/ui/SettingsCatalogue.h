#pragma once

#include "SettingField.h"

#include <QList>

// The settings a user may change, tab by tab, as the settings dialog shows
// them. Lists that depend on what is installed (languages, skins, picture
// sizes, transfer kinds) are read from the settings and the program folder
// whenever the dialog asks.
class SettingsCatalogue {
public:
    struct Tab {
        const char* name; // of its page, which the help knows it by
        const char* titleKey;
        const char* titleFallback;
        QList<SettingField::Description> fields;
    };
    static QList<Tab> tabs();

private:
    static Tab general();
    static Tab pictures();
    static Tab sounds();
    static Tab preview();
    static Tab browsers();
    static Tab phone();
};
