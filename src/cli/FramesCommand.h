#pragma once

#include <QStringList>

// vellumo-cli frames FILE.smil DIR: one PNG per change of what the
// presentation shows, named by its start in milliseconds, so a presentation
// can be checked without a window or sound.
class FramesCommand {
public:
    static int run(const QStringList& arguments);
    static QString usage();
};
