// Feeds arbitrary bytes to the WAV parser and, when it accepts them, to the
// code that trims and widens the samples it returned.
#include "WavFile.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    PcmSound sound;
    if (WavFile::parse(bytes, sound) == WavFile::Error::None) {
        const PcmSound part = sound.slice(sound.msToFrame(1), sound.msToFrame(sound.lengthMs()));
        const PcmSound wide = part.toInt16();
        PcmSound again;
        if (WavFile::parse(WavFile::toBytes(wide), again) != WavFile::Error::None ||
            again.data() != wide.data())
            __builtin_trap(); // what we write we must read back
    }
    return 0;
}
