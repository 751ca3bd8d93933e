#pragma once

#include <QStringList>

// vellumo-cli send FILE [--via ir|obex|suite] [--target TARGET]
// Sends one file to the phone the way the send dialogs do, over the transfer
// kind of the settings unless --via names one; --target replaces the OBEX
// target of the settings (and means --via obex when --via is not given).
// Prints the result code and its meaning and exits with that code.
class SendCommand {
public:
    static int run(const QStringList& arguments);
    static QString usage();
    // What a SendFile result means.
    static QString meaning(int code);
};
