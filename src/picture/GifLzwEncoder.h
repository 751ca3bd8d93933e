#pragma once

#include <QByteArray>
#include <array>
#include <cstdint>

// The LZW compressor of GIF image data, writing its codes least significant bit
// first into 255-byte data sub-blocks. The string table is cleared whenever
// the next free code reaches 511, so no code is ever wider than 9 bits: the
// table stays small and lookups cheap.
class GifLzwEncoder {
public:
    static constexpr int TableLimit = 511;

    // minimumCodeSize: 2 to 8. Emits the first clear code.
    GifLzwEncoder(int minimumCodeSize, QByteArray& output);
    void addPixel(std::uint8_t pixel);
    // Emits the last string and the end code and writes the pending bytes and
    // the zero-length terminator block.
    void finish();

private:
    static constexpr int NoCode = -1;
    void resetTable();
    void emitCode(int code);
    void putByte(std::uint8_t byte);
    void flushBlock();
    int findString(int prefix, std::uint8_t pixel) const;
    void addString(int prefix, std::uint8_t pixel);

    QByteArray& m_output;
    int m_minimumCodeSize;
    int m_clearCode;
    int m_endCode;
    int m_codeSize = 0;
    int m_codeLimit = 0;
    int m_nextCode = 0;
    int m_prefix = NoCode;
    // The table as a tree: each string's first extension and each extension's
    // next sibling, so a lookup walks only the strings that share the prefix.
    std::array<std::int16_t, TableLimit + 1> m_firstChild{};
    std::array<std::int16_t, TableLimit + 1> m_nextSibling{};
    std::array<std::uint8_t, TableLimit + 1> m_lastPixel{};
    std::uint32_t m_bits = 0;
    int m_bitCount = 0;
    std::array<std::uint8_t, 255> m_block{};
    int m_blockFill = 0;
};
