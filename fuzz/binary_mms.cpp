// Lays out arbitrary bytes as a binary MMS is laid out for import: the parts
// read, written into a folder under names of their own, the presentation
// beside them. Afterwards the folder may hold nothing but plain files, nothing
// may appear beside it, and an accepted message's presentation names only
// files of the folder. (fuzz_mms_parts checks the reader's lengths alone.)
#include "MmsImporter.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <pugixml.hpp>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {
void require(bool condition) {
    if (!condition)
        std::abort();
}

void checkPresentation(const QString& folder, const QString& path) {
    pugi::xml_document smil;
    require(smil.load_file(QFile::encodeName(path).constData()));
    require(smil.child("smil").child("body"));
    for (const pugi::xpath_node& found : smil.select_nodes("//*[@src]")) {
        const QString source = QString::fromUtf8(found.node().attribute("src").value());
        const QFileInfo file(folder + source);
        require(!source.contains(u'/') && file.isFile() && !file.isSymLink());
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    static const QTemporaryDir root;
    require(root.isValid());
    const QString input = root.filePath("in.wap");
    const QString folder = root.filePath("parts") + u'/';
    QFile file(input);
    require(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    require(file.write(bytes) == bytes.size());
    file.close();
    require(QDir().mkdir(folder));

    MmsImporter importer;
    if (importer.read(input, folder))
        checkPresentation(folder, importer.presentation());
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QFileInfo entry(it.next());
        require(entry.isFile() && !entry.isSymLink() && entry.path() + u'/' == folder);
    }
    require(QDir(root.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot) ==
            QStringList({"in.wap", "parts"}));
    require(QDir(folder).removeRecursively());
    return 0;
}
