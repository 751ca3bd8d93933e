// Reads arbitrary bytes as a SMIL presentation (and the same bytes as its
// texts index) beside two small media files.
#include "SmilImporter.h"

#include <QByteArray>
#include <QFile>
#include <QTemporaryDir>
#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static QTemporaryDir folder;
    static const bool prepared = [] {
        for (const char* name : {"a.jpg", "t.txt"}) {
            QFile file(folder.path() + "/" + name);
            if (!file.open(QIODevice::WriteOnly) || file.write("x") != 1)
                return false;
        }
        return true;
    }();
    if (!prepared)
        return 0;
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    for (const char* name : {"/mms.smil", "/texts.xml"}) {
        QFile file(folder.path() + name);
        if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
            return 0;
        file.write(bytes);
    }
    SmilImporter importer;
    importer.read(folder.path() + "/mms.smil", folder.path() + "/texts.xml");
    return 0;
}
