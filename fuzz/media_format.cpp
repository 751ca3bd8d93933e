// Feeds arbitrary bytes to the reader that tells a message part's format.
#include "MediaFormat.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const MediaFormat::Facts facts = MediaFormat::identify(bytes);
    if (facts.durationMs < -1 || (facts.resolution.isValid() && facts.resolution.isEmpty()))
        __builtin_trap(); // no negative length, no valid size of zero pixels
    MediaFormat::kindName(facts.kind);
    return 0;
}
