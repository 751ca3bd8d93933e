#include "AudioCommands.h"

#include "AmrConverter.h"
#include "CliOutput.h"
#include "EventPump.h"
#include "Mci.h"
#include "WavTrimmer.h"
#include "modPlaySound.h"

#include <QThread>

namespace {
int convert(const QStringList& arguments, int (*converter)(const QString&, const QString&),
            const QString& usage) {
    if (arguments.size() != 2)
        return CliOutput::usageError(usage);
    const int result = converter(arguments[0], arguments[1]);
    // A target that cannot be written is named in the text itself.
    const QString subject =
        result == AmrConverter::TargetUnwritable ? QString() : arguments[0] + ": ";
    if (result != AmrConverter::Ok)
        return CliOutput::error(QStringLiteral("%1%2 (%3)")
                                    .arg(subject, AmrConverter::errorText(result, arguments[1]))
                                    .arg(result));
    return 0;
}

QString mciFailure(int error) {
    QString text = Mci::mciGetErrorString(error);
    const QString detail = Mci::instance().lastErrorDetail();
    if (!detail.isEmpty())
        text += " (" + detail + ")";
    return text;
}
} // namespace

int AudioCommands::soundInfo(const QStringList& arguments) {
    if (arguments.size() != 1)
        return CliOutput::usageError(soundInfoUsage());
    CliOutput::out(modPlaySound::GetSoundInfo(arguments[0]));
    return 0;
}

int AudioCommands::wav2amr(const QStringList& arguments) {
    return convert(arguments, AmrConverter::wav2amr, wav2amrUsage());
}

int AudioCommands::amr2wav(const QStringList& arguments) {
    return convert(arguments, AmrConverter::amr2wav, amr2wavUsage());
}

int AudioCommands::trim(const QStringList& arguments) {
    // IN OUT followed by the two options in either order.
    const bool shaped = arguments.size() == 6 && arguments.indexOf("--from") >= 2 &&
                        arguments.indexOf("--to") >= 2 && arguments.indexOf("--from") % 2 == 0 &&
                        arguments.indexOf("--to") % 2 == 0;
    bool fromOk = false;
    bool toOk = false;
    const qint64 fromMs = arguments.value(arguments.indexOf("--from") + 1).toLongLong(&fromOk);
    const qint64 toMs = arguments.value(arguments.indexOf("--to") + 1).toLongLong(&toOk);
    if (!shaped || !fromOk || !toOk)
        return CliOutput::usageError(trimUsage());
    const QString error = WavTrimmer::trim(arguments[0], arguments[1], fromMs, toMs);
    return error.isEmpty() ? 0 : CliOutput::error(arguments[0] + ": " + error);
}

int AudioCommands::play(const QStringList& arguments) {
    if (arguments.size() != 1)
        return CliOutput::usageError(playUsage());
    const int error = modPlaySound::PlaySound(arguments[0]);
    if (error == modPlaySound::kNotPlayable)
        return CliOutput::error(arguments[0] + ": no device plays this kind of file");
    if (error != 0)
        return CliOutput::error(arguments[0] + ": " + mciFailure(error));
    QString mode;
    std::int64_t position = 0;
    for (modPlaySound::GetPlayStatus(mode, position); mode == QLatin1String("playing");
         modPlaySound::GetPlayStatus(mode, position)) {
        pumpEvents();
        QThread::msleep(20);
    }
    modPlaySound::StopSound();
    return 0;
}
