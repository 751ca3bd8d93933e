#pragma once

#include <QStringList>

// vellumo-cli pack FOLDER OUT.mms: saves the message XML lying in FOLDER, so
// its slide files are rendered anew and the folder is packed.
class PackCommand {
public:
    static int run(const QStringList& arguments);
    static QString usage();
};
