#pragma once

#include <QStringList>

// vellumo-cli import FILE.smil|FILE.tpl|FILE.wap OUT.mms: a SMIL presentation,
// a template archive or a binary MMS (under any name) made into a message file.
class ImportCommand {
public:
    static int run(const QStringList& arguments);
    static QString usage();
};
