#pragma once

#include <QStringList>

// vellumo-cli import FILE.smil|FILE.tpl OUT.mms: a SMIL presentation or a
// template archive made into a message file.
class ImportCommand {
public:
    static int run(const QStringList& arguments);
    static QString usage();
};
