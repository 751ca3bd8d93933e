#include "SisWriter.h"

#include "Crc16.h"

#include <QtEndian>
#include <algorithm>
#include <zlib.h>

namespace {
constexpr quint32 uid2 = 0x10003A12;
constexpr quint32 uid3 = 0x10000419;
constexpr qsizetype headerSize = 100;
constexpr qsizetype checksumOffset = 0x10;
constexpr quint16 chosenDrive = 0x21; // '!': the user picks the drive
constexpr quint32 installerVersion = 200;
constexpr qint64 maximumSize = 0xFFFFFFFF;

// Where a string lies in the package.
struct Span {
    quint32 length = 0;
    quint32 pointer = 0;
};

// The strings of a package, one after the other, starting at a known offset.
// Names are written as UTF-16LE and the header says so (option 0x0001): a
// template is named after the user's message, which may hold letters outside
// any 8-bit code page, and 8-bit names would be shown in whatever code page
// the phone happens to use.
struct StringBlock {
    qint64 start = 0;
    QByteArray bytes;

    Span add(const QString& text) {
        const Span span{quint32(text.size() * 2), quint32(start + bytes.size())};
        for (const QChar c : text) {
            bytes.append(char(c.unicode() & 0xFF));
            bytes.append(char(c.unicode() >> 8));
        }
        return span;
    }
    QList<Span> add(const QStringList& texts) {
        QList<Span> spans;
        for (const QString& text : texts)
            spans << add(text);
        return spans;
    }
};

// One file record with what it points at.
struct FileEntry {
    const PkgFile* file = nullptr;
    Span source;
    Span destination;
    Span mimeType;
    QList<QByteArray> stored;
    QList<quint32> originalSizes;
};

void put16(QByteArray& out, quint16 value) {
    char bytes[2];
    qToLittleEndian(value, bytes);
    out.append(bytes, 2);
}

void put32(QByteArray& out, quint32 value) {
    char bytes[4];
    qToLittleEndian(value, bytes);
    out.append(bytes, 4);
}

void putSpans(QByteArray& out, const QList<Span>& spans) {
    for (const Span& span : spans) {
        put32(out, span.length);
        put32(out, span.pointer);
    }
}

// A text given once per language is stored as its lengths, then its
// pointers, as the data of a file that differs by language is.
void putPerLanguage(QByteArray& out, const QList<Span>& spans) {
    for (const Span& span : spans)
        put32(out, span.length);
    for (const Span& span : spans)
        put32(out, span.pointer);
}

bool deflated(const QByteArray& data, QByteArray& out) {
    uLongf size = compressBound(uLong(data.size()));
    out.resize(qsizetype(size));
    if (compress(reinterpret_cast<Bytef*>(out.data()), &size,
                 reinterpret_cast<const Bytef*>(data.constData()), uLong(data.size())) != Z_OK)
        return false;
    out.resize(qsizetype(size));
    return true;
}

qsizetype fileRecordSize(const FileEntry& entry) {
    return 3 * 4 + 2 * 8 + entry.stored.size() * 3 * 4 + 8;
}

// Where everything goes; offsets are from the start of the package.
struct Layout {
    QList<FileEntry> files;                // in stored order: the reverse of the .pkg
    QList<const PkgRequisite*> requisites; // the same
    qint64 originalTotal = 0;
    qint64 filesPointer = 0;
    qint64 requisitesPointer = 0;
    qint64 namePointer = 0;
    qint64 capabilitiesPointer = 0;
    StringBlock strings;
    QList<QList<Span>> requisiteNames;
    QList<Span> componentNames;
    qint64 dataPointer = 0;
    qint64 total = 0;
};

// The data of every file as stored, compressed unless the package says not to.
bool storeFiles(const PkgDefinition& definition, Layout& layout, PkgError& error) {
    const bool compressData = !(definition.options & SisOption::NoCompress);
    // The installer copies files in the reverse of the order it finds them.
    for (auto file = definition.files.crbegin(); file != definition.files.crend(); ++file) {
        FileEntry entry;
        entry.file = &*file;
        const qsizetype versions = file->perLanguage ? definition.languages.size() : 1;
        for (qsizetype i = 0; i < versions; ++i) {
            // A file created later on the phone has no data at all.
            const QByteArray original =
                file->type == SisFileType::Null ? QByteArray() : file->contents.value(i);
            QByteArray stored = original;
            if (compressData && file->type != SisFileType::Null && !deflated(original, stored)) {
                error = {file->line, QStringLiteral("cannot compress the file data")};
                return false;
            }
            layout.originalTotal += original.size();
            entry.originalSizes << quint32(original.size());
            entry.stored << stored;
        }
        layout.files << entry;
    }
    return true;
}

// Requisites are stored last line first, as files are.
void orderRequisites(const PkgDefinition& definition, Layout& layout) {
    for (auto requisite = definition.requisites.crbegin();
         requisite != definition.requisites.crend(); ++requisite)
        layout.requisites << &*requisite;
}

// The package travels to other people: the folders of the machine it was
// built on are none of their business, so a source is known by its name.
QString sourceName(const PkgFile& file) {
    const QString source = file.sources.value(0);
    return source.mid(std::max(source.lastIndexOf(u'/'), source.lastIndexOf(u'\\')) + 1);
}

void placeRecords(const PkgDefinition& definition, Layout& layout) {
    const qsizetype languages = definition.languages.size();
    layout.filesPointer = headerSize + 2 * languages;
    layout.requisitesPointer = layout.filesPointer;
    for (const FileEntry& entry : layout.files)
        layout.requisitesPointer += fileRecordSize(entry);
    layout.namePointer = layout.requisitesPointer + layout.requisites.size() * (12 + 8 * languages);
    layout.capabilitiesPointer = layout.namePointer + 8 * languages;
}

// Strings before data: an installed copy of a package is cut off after its
// strings, so they must not sit behind the data.
void placeStringsAndData(const PkgDefinition& definition, Layout& layout) {
    StringBlock& strings = layout.strings;
    strings.start = layout.capabilitiesPointer; // no capabilities
    for (FileEntry& entry : layout.files) {
        entry.source = strings.add(sourceName(*entry.file));
        entry.destination = strings.add(entry.file->destination);
        entry.mimeType = strings.add(entry.file->mimeType);
    }
    for (const PkgRequisite* requisite : layout.requisites)
        layout.requisiteNames << strings.add(requisite->names);
    layout.componentNames = strings.add(definition.names);
    layout.dataPointer = strings.start + strings.bytes.size();
    layout.total = layout.dataPointer;
    for (const FileEntry& entry : layout.files)
        for (const QByteArray& stored : entry.stored)
            layout.total += stored.size();
}

void writeHeader(const PkgDefinition& definition, const Layout& layout, QByteArray& out) {
    put32(out, definition.uid);
    put32(out, uid2);
    put32(out, uid3);
    put32(out, SisWriter::uid4(out));
    put16(out, 0); // checksum, filled in last
    put16(out, quint16(definition.languages.size()));
    put16(out, quint16(layout.files.size()));
    put16(out, quint16(definition.requisites.size()));
    put16(out, 0); // installation language
    put16(out, 0); // installation files
    put16(out, chosenDrive);
    put16(out, 0); // capabilities
    put32(out, installerVersion);
    put16(out, definition.options | SisOption::Unicode);
    put16(out, quint16(definition.type));
    put16(out, definition.version.major);
    put16(out, definition.version.minor);
    put32(out, definition.version.variant);
    put32(out, quint32(headerSize)); // languages
    put32(out, quint32(layout.filesPointer));
    put32(out, quint32(layout.requisitesPointer));
    put32(out, 0); // certificates
    put32(out, quint32(layout.namePointer));
    put32(out, 0); // signature
    put32(out, quint32(layout.capabilitiesPointer));
    put32(out, 0); // installed space
    put32(out, quint32(layout.originalTotal));
    out.append(16, '\0');
}

void writeFileRecords(const Layout& layout, QByteArray& out) {
    quint32 dataPointer = quint32(layout.dataPointer);
    for (const FileEntry& entry : layout.files) {
        put32(out, entry.file->perLanguage ? 1 : 0);
        put32(out, quint32(entry.file->type));
        put32(out, entry.file->details);
        putSpans(out, {entry.source, entry.destination});
        for (const QByteArray& stored : entry.stored)
            put32(out, quint32(stored.size()));
        for (const QByteArray& stored : entry.stored) {
            put32(out, dataPointer);
            dataPointer += quint32(stored.size());
        }
        for (const quint32 size : entry.originalSizes)
            put32(out, size);
        putSpans(out, {entry.mimeType});
    }
}

void writeRequisites(const Layout& layout, QByteArray& out) {
    for (qsizetype i = 0; i < layout.requisites.size(); ++i) {
        const PkgRequisite& requisite = *layout.requisites.at(i);
        put32(out, requisite.uid);
        put16(out, requisite.version.major);
        put16(out, requisite.version.minor);
        put32(out, requisite.version.variant);
        putPerLanguage(out, layout.requisiteNames.at(i));
    }
}
} // namespace

quint32 SisWriter::uid4(QByteArrayView firstTwelveBytes) {
    QByteArray even;
    QByteArray odd;
    for (qsizetype i = 0; i < 12; ++i)
        (i % 2 == 0 ? even : odd).append(firstTwelveBytes.at(i));
    return quint32(crc16(even)) | (quint32(crc16(odd)) << 16);
}

bool SisWriter::fail(int line, const QString& message) {
    m_error = {line, message};
    return false;
}

bool SisWriter::build(const PkgDefinition& definition, QByteArray& package) {
    m_error = {};
    if (definition.files.size() > 0xFFFF || definition.requisites.size() > 0xFFFF)
        return fail(0, QStringLiteral("too many files or requisites for one package"));
    Layout layout;
    if (!storeFiles(definition, layout, m_error))
        return false;
    orderRequisites(definition, layout);
    placeRecords(definition, layout);
    placeStringsAndData(definition, layout);
    if (layout.originalTotal > maximumSize || layout.total > maximumSize)
        return fail(0, QStringLiteral("the package would be larger than 4 GB"));

    package.clear();
    package.reserve(qsizetype(layout.total));
    writeHeader(definition, layout, package);
    for (const quint16 language : definition.languages)
        put16(package, language);
    writeFileRecords(layout, package);
    writeRequisites(layout, package);
    putPerLanguage(package, layout.componentNames);
    package.append(layout.strings.bytes);
    for (const FileEntry& entry : layout.files)
        for (const QByteArray& stored : entry.stored)
            package.append(stored);

    const quint16 checksum = crc16(QByteArrayView(package).sliced(checksumOffset + 2),
                                   crc16(QByteArrayView(package).first(checksumOffset)));
    qToLittleEndian(checksum, package.data() + checksumOffset);
    return true;
}
