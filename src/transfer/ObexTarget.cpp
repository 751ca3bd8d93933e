#include "ObexTarget.h"

#include <QRegularExpression>
#include <QStringList>

namespace {
ObexTarget invalid(const QString& text, const QString& why) {
    ObexTarget target;
    target.error = QStringLiteral("bad OBEX target \"%1\": %2").arg(text, why);
    return target;
}

ObexTarget parseTcp(const QString& text, const QString& rest) {
    const qsizetype colon = rest.lastIndexOf(':');
    if (colon < 0)
        return invalid(text, QStringLiteral("expected tcp:HOST:PORT"));
    QString host = rest.left(colon);
    const bool bracketed = host.startsWith('[') && host.endsWith(']');
    if (bracketed)
        host = host.mid(1, host.size() - 2);
    bool ok = false;
    const uint port = rest.mid(colon + 1).toUInt(&ok);
    if (host.isEmpty() || host.contains(QRegularExpression("\\s")))
        return invalid(text, QStringLiteral("missing or broken host"));
    // A colon in the host is an IPv6 address only in brackets; otherwise
    // something follows the port.
    if (!bracketed && host.contains(':'))
        return invalid(text, QStringLiteral("\"%1\" is no port number; expected tcp:HOST:PORT "
                                            "(an IPv6 host goes in brackets: tcp:[::1]:650)")
                                 .arg(rest.mid(host.indexOf(':') + 1)));
    if (!ok || port == 0 || port > 65535)
        return invalid(text, QStringLiteral("the port must be 1 to 65535"));
    ObexTarget target;
    target.kind = ObexTarget::Kind::Tcp;
    target.host = host;
    target.port = static_cast<std::uint16_t>(port);
    return target;
}

ObexTarget parseBluetooth(const QString& text, const QString& rest) {
    const QStringList parts = rest.split(':');
    if (parts.size() != 7)
        return invalid(text, QStringLiteral("expected bt:AA:BB:CC:DD:EE:FF:CHANNEL"));
    ObexTarget target;
    for (int i = 0; i < 6; ++i) {
        bool ok = false;
        const uint byte = parts[i].toUInt(&ok, 16);
        if (!ok || parts[i].size() != 2)
            return invalid(text, QStringLiteral("the address needs six two-digit hex bytes"));
        target.address[static_cast<size_t>(i)] = static_cast<std::uint8_t>(byte);
    }
    bool ok = false;
    const uint channel = parts[6].toUInt(&ok);
    // RFCOMM knows the channels 1 to 30.
    if (!ok || channel == 0 || channel > 30)
        return invalid(text, QStringLiteral("the channel must be 1 to 30"));
    target.kind = ObexTarget::Kind::Bluetooth;
    target.channel = static_cast<std::uint8_t>(channel);
    return target;
}
} // namespace

ObexTarget ObexTarget::parse(const QString& text) {
    const QString trimmed = text.trimmed();
    if (trimmed.startsWith(QLatin1String("tcp:"), Qt::CaseInsensitive))
        return parseTcp(text, trimmed.mid(4));
    if (trimmed.startsWith(QLatin1String("bt:"), Qt::CaseInsensitive))
        return parseBluetooth(text, trimmed.mid(3));
    return invalid(text, QStringLiteral("it must begin with tcp: or bt:"));
}
