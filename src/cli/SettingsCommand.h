#pragma once

#include <QStringList>

// vellumo-cli settings get SECTION KEY [DEFAULT]
// vellumo-cli settings set SECTION KEY VALUE
// Works on the user's settings file, opened exactly as the program opens it.
class SettingsCommand {
public:
    static int run(const QStringList& arguments);
    static QString usage();
};
