// Imports arbitrary bytes as a SMIL presentation (and the same bytes as its
// texts index) from a folder with media, texts and links to a secret outside.
#include "ImportTrap.h"

#include <QFile>
#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const ImportTrap trap;
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    for (const char* name : {"mms.smil", "texts.xml"}) {
        QFile file(trap.presentationFolder() + name);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            return 0;
        file.write(bytes);
    }
    clsMMSManager manager;
    trap.initialize(manager);
    trap.check(
        manager.ImportMMS(trap.presentationFolder() + "mms.smil", clsMMSManager::ImportSmil));
    return 0;
}
