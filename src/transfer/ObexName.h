#pragma once

#include <QByteArray>
#include <QString>

// The file name an OBEX push carries in its NAME header.
namespace ObexName {
// UTF-16 big endian with a terminating zero character.
QByteArray encode(const QString& name);
// Bytes the NAME header of this name takes in a packet.
qsizetype headerSize(const QString& name);
// The name cut to at most maxUnits UTF-16 units. The NAME header cannot be
// split over packets, so a phone with small packets gets a shorter name; the
// extension stays so the phone still knows what the file is. Empty when not
// even one character fits.
QString shortened(const QString& name, qsizetype maxUnits);
} // namespace ObexName
