// Reads arbitrary bytes as a text file (with a charset chosen by the first
// byte, or none) and as an XML document of another program, and holds the
// decoder to what it promises.
#include "TextDecoder.h"
#include "XmlEntities.h"

#include <QStringDecoder>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <source_location>

namespace {
const std::array<const char*, 6> kCharsets = {"",       "windows-1252",    "utf-16",
                                              "KOI8-R", "no-such-charset", "ISO-8859-1"};

bool isUtf8(const QByteArray& bytes) {
    QStringDecoder decoder(QStringDecoder::Utf8);
    const QString text = decoder.decode(bytes); // decode() only decodes when it is converted
    return !decoder.hasError();
}

void require(bool condition, std::source_location where = std::source_location::current()) {
    if (condition)
        return;
    std::fprintf(stderr, "promise broken at line %u\n", unsigned(where.line()));
    std::abort();
}

void walk(const XmlEntities& entities, const pugi::xml_node& node) {
    for (const pugi::xml_node& child : node.children()) {
        (void)entities.textOf(child);
        for (const pugi::xml_attribute& attribute : child.attributes())
            (void)entities.resolve(attribute.value());
        walk(entities, child);
    }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0)
        return 0;
    const QString charset = QString::fromLatin1(kCharsets[data[0] % kCharsets.size()]);
    const QByteArray bytes(reinterpret_cast<const char*>(data + 1), qsizetype(size - 1));

    (void)TextDecoder::decode(bytes, charset);
    const QString detected = TextDecoder::decode(bytes);
    const bool marked = bytes.startsWith("\xEF\xBB\xBF") || bytes.startsWith("\xFF\xFE") ||
                        bytes.startsWith("\xFE\xFF");
    if (!marked && isUtf8(bytes))
        require(detected == QString::fromUtf8(bytes));
    if (!marked && !isUtf8(bytes))
        require(detected.size() == bytes.size()); // one character per code-page byte

    const QByteArray xml = TextDecoder::xmlAsUtf8(bytes);
    require(xml == bytes || isUtf8(xml));
    pugi::xml_document document;
    if (document.load_buffer(xml.constData(), size_t(xml.size()), XmlEntities::kParseOptions,
                             pugi::encoding_utf8))
        walk(XmlEntities(document), document);
    return 0;
}
