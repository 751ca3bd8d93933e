#pragma once

#include <QStringList>

// vellumo-cli new OUT.mms OPTIONS: a whole message from the command line; the
// options are those of MessageScript::help().
class NewCommand {
public:
    static int run(const QStringList& arguments);
    static QString usage();
};
