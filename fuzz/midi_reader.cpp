// Feeds arbitrary bytes to the Standard MIDI File reader.
#include "MidiFile.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    MidiFile::Info info;
    if (MidiFile::parse(bytes, info) == MidiFile::Error::None && info.lengthMs < 0)
        __builtin_trap(); // a length is never negative
    return 0;
}
