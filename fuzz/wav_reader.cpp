// Feeds arbitrary bytes to the WAV header reader and parser and, when they
// accept them, to the code that trims and widens the samples returned.
#include "WavFile.h"
#include "WavHeader.h"

#include <QBuffer>
#include <cstddef>
#include <cstdint>

namespace {
// What a header says must lie within the file and never be negative.
void checkHeader(QByteArray bytes) {
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    WavHeader header;
    if (header.read(buffer) != WavHeader::Error::None)
        return;
    if (header.dataOffset() + header.dataSize() > bytes.size() || header.dataSize() < 0 ||
        header.frames() < 0 || header.lengthMs() < 0)
        __builtin_trap();
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    checkHeader(bytes);
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
