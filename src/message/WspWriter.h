#pragma once

#include <QByteArray>
#include <QString>
#include <QtGlobal>

// The primitive value encodings of the binary MMS headers (WSP header encoding).
// Each function returns the encoded bytes, so a field is written by joining them.
namespace WspWriter {

// Largest value a uintvar can carry: 32 bits, five bytes of seven bits.
constexpr quint64 maxUintvar = 0xFFFFFFFFu;

// One byte 0x80 | value; value must be 0..127.
QByteArray shortInteger(quint8 value);
// A length byte (1..8 here) followed by the value in big-endian bytes, no leading zeros.
QByteArray longInteger(quint64 value);
// Seven bits per byte, most significant group first, 0x80 on every byte but the last.
QByteArray uintvar(quint32 value);
// Lengths up to 30 in one byte, longer ones as 0x1F and a uintvar.
QByteArray valueLength(quint32 length);
// The value-length of value followed by value itself.
QByteArray withValueLength(const QByteArray& value);
// The bytes and a terminating 0x00; a first byte of 0x80 or above would read as a
// short-integer, so it gets a 0x7F quote in front (as does a first 0x7F, which a
// reader would take for the quote). NUL bytes cannot be carried and are dropped.
QByteArray textString(const QByteArray& text);
// 0x22, the bytes, 0x00.
QByteArray quotedString(const QByteArray& text);
// Printable ASCII as a text-string; anything else as UTF-8 with its charset
// (value-length, MIBenum 106 as a short-integer, text-string).
QByteArray encodedStringValue(const QString& text);

} // namespace WspWriter
