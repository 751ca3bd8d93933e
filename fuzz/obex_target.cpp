// The OBEX target comes from a settings file a user may edit by hand.
#include "ObexTarget.h"

#include <QString>
#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString text =
        QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    const ObexTarget target = ObexTarget::parse(text);
    // Whatever was accepted must be usable as it stands.
    if (target.kind == ObexTarget::Kind::Tcp && (target.host.isEmpty() || target.port == 0))
        __builtin_trap();
    if (target.kind == ObexTarget::Kind::Bluetooth && (target.channel < 1 || target.channel > 30))
        __builtin_trap();
    if (!target.isValid() && target.error.isEmpty())
        __builtin_trap();
    return 0;
}
