// Imports arbitrary bytes as a template archive, with a link planted where a
// shared unpack folder would be and links to a secret beside the template.
#include "ImportTrap.h"

#include <QDir>
#include <QFile>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const ImportTrap trap;
    const QString archive = trap.presentationFolder() + "x.tpl";
    QFile file(archive);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return 0;
    file.write(reinterpret_cast<const char*>(data), qint64(size));
    file.close();
    {
        clsMMSManager manager;
        trap.initialize(manager);
        trap.check(manager.ImportMMS(archive, clsMMSManager::ImportTemplate));
    }
    // The unpacked template went with the manager.
    if (!QDir(QDir::tempPath()).entryList({"Vellumo-*"}, QDir::AllEntries).isEmpty())
        std::abort();
    return 0;
}
