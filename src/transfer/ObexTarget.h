#pragma once

#include <QString>
#include <array>
#include <cstdint>

// Where OBEX pushes go, parsed from the settings text:
//   "tcp:HOST:PORT"                  an OBEX server on TCP (host name, IPv4 or [IPv6])
//   "bt:AA:BB:CC:DD:EE:FF:CHANNEL"   a phone's Object Push channel over Bluetooth RFCOMM
struct ObexTarget {
    enum class Kind { Invalid, Tcp, Bluetooth };

    Kind kind = Kind::Invalid;
    QString host;
    std::uint16_t port = 0;
    // The device address as written, first byte first.
    std::array<std::uint8_t, 6> address{};
    std::uint8_t channel = 0;
    // Why the text was not understood (Kind::Invalid only).
    QString error;

    static ObexTarget parse(const QString& text);
    bool isValid() const { return kind != Kind::Invalid; }
};
