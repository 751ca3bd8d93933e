#pragma once

#include <QByteArrayView>
#include <QtGlobal>

// CRC-16 with polynomial 0x1021, initial value 0, no reflection and no final
// xor: the checksum the package header and its fourth UID are built from.
// Pass the previous result as crc to continue over a second piece.
quint16 crc16(QByteArrayView data, quint16 crc = 0);
