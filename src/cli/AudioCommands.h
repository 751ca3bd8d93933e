#pragma once

#include <QStringList>

// The sound commands of vellumo-cli:
//   sound-info FILE              the information string "EXT;length;rate;bits"
//   wav2amr IN OUT, amr2wav IN OUT
//   trim IN OUT --from MS --to MS
//   play FILE                    returns when the sound has ended
class AudioCommands {
public:
    static int soundInfo(const QStringList& arguments);
    static int wav2amr(const QStringList& arguments);
    static int amr2wav(const QStringList& arguments);
    static int trim(const QStringList& arguments);
    static int play(const QStringList& arguments);

    static QString soundInfoUsage() { return QStringLiteral("vellumo-cli sound-info FILE"); }
    static QString wav2amrUsage() { return QStringLiteral("vellumo-cli wav2amr IN.wav OUT.amr"); }
    static QString amr2wavUsage() { return QStringLiteral("vellumo-cli amr2wav IN.amr OUT.wav"); }
    static QString trimUsage() {
        return QStringLiteral("vellumo-cli trim IN.wav OUT.wav --from MS --to MS");
    }
    static QString playUsage() { return QStringLiteral("vellumo-cli play FILE"); }
};
