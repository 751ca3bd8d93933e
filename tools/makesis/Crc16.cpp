#include "Crc16.h"

#include <array>

namespace {
constexpr std::array<quint16, 256> makeTable() {
    std::array<quint16, 256> table{};
    for (int i = 0; i < 256; ++i) {
        quint16 value = quint16(i << 8);
        for (int bit = 0; bit < 8; ++bit)
            value = (value & 0x8000) ? quint16((value << 1) ^ 0x1021) : quint16(value << 1);
        table[i] = value;
    }
    return table;
}

constexpr std::array<quint16, 256> table = makeTable();
} // namespace

quint16 crc16(QByteArrayView data, quint16 crc) {
    for (const char byte : data)
        crc = quint16((crc << 8) ^ table[((crc >> 8) ^ quint8(byte)) & 0xFF]);
    return crc;
}
