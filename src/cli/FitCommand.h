#pragma once

#include <QStringList>

// vellumo-cli fit FILE.mms --class NAME OUT.mms: writes OUT.mms, the message
// changed to fit the class, and says what was changed and what still breaks
// the class. FILE.mms is never written. Exit code 0 when the result fits,
// 1 when it does not, 2 when the file is no message.
class FitCommand {
public:
    static int run(const QStringList& arguments);
    static QString usage();
};
