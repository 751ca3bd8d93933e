// Feeds arbitrary bytes to the reader of a binary MMS's parts.
#include "MmsPartReader.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    MmsPartReader reader;
    reader.read(bytes);
    qsizetype total = 0;
    for (const MmsPartReader::Part& part : reader.parts())
        total += part.data.size();
    if (total > bytes.size())
        __builtin_trap(); // parts are never longer than the message holding them
    return 0;
}
