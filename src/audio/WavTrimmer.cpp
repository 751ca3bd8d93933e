#include "WavTrimmer.h"

#include "WavFile.h"

QString WavTrimmer::trim(const QString& source, const QString& target, std::int64_t fromMs,
                         std::int64_t toMs) {
    PcmSound sound;
    if (const auto error = WavFile::read(source, sound); error != WavFile::Error::None)
        return WavFile::errorText(error);
    // The whole sound is every frame it has, also the ones after its last
    // whole millisecond, and also none at all.
    if (fromMs == -1 || toMs == -1)
        return write(target, sound);
    if (fromMs < 0 || fromMs >= toMs || toMs > sound.lengthMs())
        return QStringLiteral("the range %1..%2 ms does not lie within the sound's %3 ms")
            .arg(fromMs)
            .arg(toMs)
            .arg(sound.lengthMs());
    return write(target, sound.slice(sound.msToFrame(fromMs), sound.msToFrame(toMs)));
}

QString WavTrimmer::write(const QString& target, const PcmSound& sound) {
    if (!WavFile::write(target, sound))
        return QStringLiteral("cannot write %1").arg(target);
    return {};
}
