#pragma once

#include <QString>

class clsPropertiesXML;

// What the transfer adapters need from the settings (section "PhoneTransfer").
// Every wait on a phone or a program is bounded by one of these times, so a
// silent phone ends as a failure instead of a hang.
struct TransferOptions {
    // OBEX Object Push target: "tcp:HOST:PORT" or "bt:AA:BB:CC:DD:EE:FF:CHANNEL".
    QString obexTarget = QStringLiteral("tcp:127.0.0.1:650");
    // Opening the TCP or RFCOMM connection.
    int connectTimeoutMs = 5000;
    // Longest silence of the phone while an OBEX exchange waits for its answer.
    int responseTimeoutMs = 20000;
    // How often the adapters look whether a phone is there.
    int probeIntervalMs = 5000;
    // The phone-suite command line tool and the longest a call of it may take.
    QString suiteProgram = QStringLiteral("kdeconnect-cli");
    int suiteTimeoutMs = 30000;

    static TransferOptions fromSettings(clsPropertiesXML* settings);
};

// The infrared command line for the running system's family (the operating
// system name up to its first "_"), from settings section "IrDaCommand".
QString irDaCommandline(clsPropertiesXML& settings);
// The family's key in that section, and the command used when it names none:
// the desktop's own Bluetooth file sender.
QString irDaFamily();
QString irDaDefaultCommand();
