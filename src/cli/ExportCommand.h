#pragma once

#include <QStringList>

// vellumo-cli export FILE.mms --kind smil|tpl|sis --format ms|s FOLDER/NAME.smil [--overwrite]:
// the message as a SMIL set in FOLDER, and as FOLDER/NAME.tpl for a template or
// FOLDER/NAME.pkg and FOLDER/NAME.SIS for an installation package.
// The exit code is the export's result: 0, 1 (failed) or 2 (target exists).
class ExportCommand {
public:
    static int run(const QStringList& arguments);
    static QString usage();
};
