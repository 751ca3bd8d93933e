#pragma once

#include <QStringList>

class clsMessage;

// vellumo-cli info FILE.mms: the message's name and version, and per slide
// its duration, background, draw objects, sound and text.
class InfoCommand {
public:
    static int run(const QStringList& arguments);
    static QString usage();
    // The report, one line each, as info prints it.
    static QStringList describe(const clsMessage& message);
};
