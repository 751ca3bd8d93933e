#include "GifLzwEncoder.h"

GifLzwEncoder::GifLzwEncoder(int minimumCodeSize, QByteArray& output)
    : m_output(output), m_minimumCodeSize(minimumCodeSize), m_clearCode(1 << minimumCodeSize),
      m_endCode(m_clearCode + 1) {
    resetTable();
    emitCode(m_clearCode);
}

void GifLzwEncoder::resetTable() {
    m_codeSize = m_minimumCodeSize + 1;
    m_codeLimit = 1 << m_codeSize;
    m_nextCode = m_clearCode + 2;
    m_firstChild.fill(-1);
}

int GifLzwEncoder::findString(int prefix, std::uint8_t pixel) const {
    for (int code = m_firstChild[prefix]; code >= 0; code = m_nextSibling[code])
        if (m_lastPixel[code] == pixel)
            return code;
    return NoCode;
}

void GifLzwEncoder::addString(int prefix, std::uint8_t pixel) {
    const int code = m_nextCode++;
    m_lastPixel[code] = pixel;
    m_firstChild[code] = -1;
    m_nextSibling[code] = m_firstChild[prefix];
    m_firstChild[prefix] = static_cast<std::int16_t>(code);
    if (m_nextCode > m_codeLimit) {
        ++m_codeSize;
        m_codeLimit <<= 1;
    }
}

void GifLzwEncoder::addPixel(std::uint8_t pixel) {
    if (m_prefix == NoCode) {
        m_prefix = pixel;
        return;
    }
    const int extended = findString(m_prefix, pixel);
    if (extended != NoCode) {
        m_prefix = extended;
        return;
    }
    emitCode(m_prefix);
    addString(m_prefix, pixel);
    m_prefix = pixel;
    if (m_nextCode == TableLimit) {
        emitCode(m_prefix);
        emitCode(m_clearCode);
        resetTable();
        m_prefix = NoCode;
    }
}

void GifLzwEncoder::finish() {
    if (m_prefix != NoCode)
        emitCode(m_prefix);
    emitCode(m_endCode);
    if (m_bitCount > 0)
        putByte(static_cast<std::uint8_t>(m_bits));
    m_bits = 0;
    m_bitCount = 0;
    if (m_blockFill > 0)
        flushBlock();
    m_output.append('\0');
}

void GifLzwEncoder::emitCode(int code) {
    m_bits |= static_cast<std::uint32_t>(code) << m_bitCount;
    m_bitCount += m_codeSize;
    while (m_bitCount >= 8) {
        putByte(static_cast<std::uint8_t>(m_bits));
        m_bits >>= 8;
        m_bitCount -= 8;
    }
}

void GifLzwEncoder::putByte(std::uint8_t byte) {
    m_block[m_blockFill++] = byte;
    if (m_blockFill == static_cast<int>(m_block.size()))
        flushBlock();
}

void GifLzwEncoder::flushBlock() {
    m_output.append(static_cast<char>(m_blockFill));
    m_output.append(reinterpret_cast<const char*>(m_block.data()), m_blockFill);
    m_blockFill = 0;
}
