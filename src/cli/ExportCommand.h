#pragma once

#include <QStringList>

// vellumo-cli export FILE.mms --kind smil|tpl|sis|wap --format ms|s FOLDER/NAME.smil
//     [--overwrite] [--retrieve-conf]
// The message as a SMIL set in FOLDER, and from it FOLDER/mms.tpl (a template),
// FOLDER/mms.pkg and FOLDER/mms.SIS (an installation package) or FOLDER/mms.wap
// (a binary MMS, sent or, with --retrieve-conf, as received). The exit code is
// the operation's result: 0, 1 (failed), 2 (target exists), 6 (packing failed).
class ExportCommand {
public:
    static int run(const QStringList& arguments);
    static QString usage();
};
