#pragma once

#include "ContentClassChecker.h"

#include <QStringList>
#include <optional>

// vellumo-cli check FILE.mms [--class NAME]: the smallest content class the
// message fits ("none" when it fits none), then each rule it breaks for the
// chosen class (by default the one in the settings). Exit code 0 when it
// fits that class, 1 when it does not, 2 when the file is no message.
class CheckCommand {
public:
    static int run(const QStringList& arguments);
    static QString usage();

    // Takes "--class NAME" out of the arguments, the class in the settings
    // when there is none; nullopt for a name that is no class.
    static std::optional<ContentClass::Id> chosenClass(QStringList& arguments);
    // The broken rules of a report, one line each.
    static QStringList brokenLines(const ContentClassChecker::Report& report);
};
