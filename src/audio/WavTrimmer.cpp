#include "WavTrimmer.h"

#include "WavFile.h"

QString WavTrimmer::trim(const QString& source, const QString& target, std::int64_t fromMs,
                         std::int64_t toMs) {
    PcmSound sound;
    if (const auto error = WavFile::read(source, sound); error != WavFile::Error::None)
        return WavFile::errorText(error);
    if (fromMs == -1 || toMs == -1) {
        fromMs = 0;
        toMs = sound.lengthMs();
    }
    if (fromMs < 0 || fromMs >= toMs || toMs > sound.lengthMs())
        return QStringLiteral("the range %1..%2 ms does not lie within the sound's %3 ms")
            .arg(fromMs)
            .arg(toMs)
            .arg(sound.lengthMs());
    if (!WavFile::write(target, sound.slice(sound.msToFrame(fromMs), sound.msToFrame(toMs))))
        return QStringLiteral("cannot write %1").arg(target);
    return {};
}
