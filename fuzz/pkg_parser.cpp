// Arbitrary bytes as a package definition; whatever parses is laid out as a
// package too, with each file's source name standing in for its data.
#include "PkgParser.h"
#include "SisWriter.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    PkgParser parser;
    if (!parser.parse(QByteArray(reinterpret_cast<const char*>(data), qsizetype(size))))
        return 0;
    PkgDefinition definition = parser.definition();
    for (PkgFile& file : definition.files)
        for (const QString& source : file.sources)
            file.contents << source.toUtf8();
    SisWriter writer;
    QByteArray package;
    writer.build(definition, package);
    return 0;
}
