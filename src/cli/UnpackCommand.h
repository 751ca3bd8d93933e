#pragma once

#include <QStringList>

// vellumo-cli unpack FILE.mms FOLDER: opens a message with FOLDER as its work
// folder. Exit code 2 when the file is not a message archive.
class UnpackCommand {
public:
    static int run(const QStringList& arguments);
    static QString usage();
};
