#include "MmsPartFiles.h"

#include "AppPaths.h"
#include "MediaFormat.h"
#include "PlainFileName.h"
#include "TextDecoder.h"
#include "XmlText.h"

#include <QFile>
#include <QUrl>

namespace {
constexpr qsizetype kMaxStemLength = 60;
constexpr qsizetype kMaxExtensionLength = 5;
const QString kCid = QStringLiteral("cid:");

QString lastSegment(const QString& name) {
    return name.mid(std::max(name.lastIndexOf(u'/'), name.lastIndexOf(u'\\')) + 1);
}

QString percentDecoded(const QString& value) {
    return QUrl::fromPercentEncoding(value.toUtf8());
}

// What a file system or a later reader could take for more than a name, and
// what the presentation naming the file could not carry (XmlText).
QString withoutOddCharacters(const QString& written) {
    QString name = XmlText::clean(written);
    for (QChar& c : name)
        if (c.unicode() < 0x20 || c.unicode() == 0x7F || QStringLiteral("/\\:*?\"<>|").contains(c))
            c = u'_';
    while (name.startsWith(u'.'))
        name.remove(0, 1);
    return name.trimmed();
}

MmsPartFiles::Kind kindOfBytes(const QByteArray& data) {
    using Kind = MediaFormat::Kind;
    const Kind kind = MediaFormat::identify(data).kind;
    switch (kind) {
    case Kind::JpegBaseline:
    case Kind::JpegExtended:
    case Kind::JpegProgressive:
    case Kind::JpegOther:
    case Kind::Gif87a:
    case Kind::Gif89a:
    case Kind::Png:
    case Kind::Wbmp:
    case Kind::Bmp:
        return MmsPartFiles::Kind::Picture;
    case Kind::AmrNb:
    case Kind::AmrWb:
    case Kind::SpMidi:
    case Kind::Midi:
    case Kind::Mp3:
    case Kind::Wav:
        return MmsPartFiles::Kind::Sound;
    case Kind::TextAscii:
    case Kind::TextUtf8:
    case Kind::TextUtf16:
    case Kind::TextEightBit:
        return MmsPartFiles::Kind::Text;
    case Kind::Smil:
        return MmsPartFiles::Kind::Smil;
    default:
        return MmsPartFiles::Kind::Other;
    }
}
} // namespace

MmsPartFiles::Kind MmsPartFiles::kindOf(const MmsPartReader::Part& part) {
    const QString& type = part.type.mediaType;
    if (type == QLatin1String("application/smil"))
        return Kind::Smil;
    if (type.startsWith(QLatin1String("image/")) && !type.endsWith(u'*'))
        return Kind::Picture;
    if (type.startsWith(QLatin1String("audio/")) && !type.endsWith(u'*'))
        return Kind::Sound;
    if (type == QLatin1String("text/plain"))
        return Kind::Text;
    const bool saysNothing =
        type.isEmpty() || type.endsWith(u'*') || type == QLatin1String("application/octet-stream");
    return saysNothing ? kindOfBytes(part.data) : Kind::Other;
}

bool MmsPartFiles::write(const QString& folder, const QList<MmsPartReader::Part>& parts,
                         const QStringList& reserved, QString* why) {
    m_entries.clear();
    m_taken.clear();
    for (const QString& name : reserved)
        m_taken.insert(name.toCaseFolded());
    for (int i = 0; i < parts.size(); ++i) {
        const MmsPartReader::Part& part = parts[i];
        const Kind kind = kindOf(part);
        Entry entry{part.name, part.contentId, QString(), kind == Kind::Text};
        if (kind != Kind::Smil) {
            entry.file = safeName(part, kind, i);
            const QByteArray bytes =
                entry.text ? TextDecoder::decode(part.data, part.type.charset).toUtf8() : part.data;
            if (!writeFile(AppPaths::withSlash(folder) + entry.file, bytes, why))
                return false;
        }
        m_entries.append(entry);
    }
    return true;
}

QString MmsPartFiles::fileName(int index) const {
    return index >= 0 && index < m_entries.size() ? m_entries[index].file : QString();
}

bool MmsPartFiles::isText(int index) const {
    return index >= 0 && index < m_entries.size() && m_entries[index].text;
}

int MmsPartFiles::find(const QString& source) const {
    const QString value = source.trimmed();
    if (!value.startsWith(kCid, Qt::CaseInsensitive))
        return findName(value);
    const QString id = MmsPartReader::bareContentId(percentDecoded(value.mid(kCid.size())));
    for (const Qt::CaseSensitivity sensitivity : {Qt::CaseSensitive, Qt::CaseInsensitive})
        if (const int found = match(Field::ContentId, id, sensitivity); found >= 0)
            return found;
    return findName(id);
}

int MmsPartFiles::findName(const QString& value) const {
    for (const QString& name : {value, percentDecoded(value)})
        for (const Field field : {Field::Location, Field::LastSegment, Field::ContentId})
            for (const Qt::CaseSensitivity sensitivity : {Qt::CaseSensitive, Qt::CaseInsensitive})
                if (const int found = match(field, name, sensitivity); found >= 0)
                    return found;
    return -1;
}

int MmsPartFiles::match(Field field, const QString& value, Qt::CaseSensitivity sensitivity) const {
    const QString wanted = field == Field::LastSegment ? lastSegment(value)
                           : field == Field::ContentId ? MmsPartReader::bareContentId(value)
                                                       : value;
    if (wanted.isEmpty())
        return -1;
    for (int i = 0; i < m_entries.size(); ++i) {
        const Entry& entry = m_entries[i];
        const QString have = field == Field::LastSegment ? lastSegment(entry.location)
                             : field == Field::ContentId ? entry.contentId
                                                         : entry.location;
        if (!entry.file.isEmpty() && have.compare(wanted, sensitivity) == 0)
            return i;
    }
    return -1;
}

QString MmsPartFiles::label(int index) const {
    if (index < 0 || index >= m_entries.size())
        return QString();
    const Entry& entry = m_entries[index];
    if (!entry.location.isEmpty())
        return entry.location;
    return entry.contentId.isEmpty() ? QString::number(index + 1) : '<' + entry.contentId + '>';
}

// The message's name for the part, cut to its last segment and cleared of
// what a path could use, else "part" and its number; the extension of its
// content when the name has none; a number added until no other file has it.
QString MmsPartFiles::safeName(const MmsPartReader::Part& part, Kind kind, int index) {
    QString name;
    for (const QString& candidate : {part.name, part.type.name, part.contentId})
        if (name.isEmpty())
            name = withoutOddCharacters(lastSegment(percentDecoded(candidate)));
    QString extension = AppPaths::extensionOf(name);
    QString stem = name.left(name.size() - extension.size());
    if (extension.size() < 2 || extension.size() > kMaxExtensionLength) {
        stem = name;
        extension = kind == Kind::Text
                        ? QStringLiteral(".txt")
                        : MediaFormat::extensionFor(MediaFormat::identify(part.data).kind);
    }
    // The presentation's reader trims what it reads, so the name may not end in a blank.
    stem = stem.left(kMaxStemLength).trimmed();
    if (stem.isEmpty() || !PlainFileName::isPlain(stem + extension))
        stem = QStringLiteral("part%1").arg(index + 1);
    name = stem + extension;
    for (int n = 2; m_taken.contains(name.toCaseFolded()); ++n)
        name = QStringLiteral("%1_%2%3").arg(stem).arg(n).arg(extension);
    m_taken.insert(name.toCaseFolded());
    return name;
}

// Only new files in the private folder: nothing there can be a link.
bool MmsPartFiles::writeFile(const QString& path, const QByteArray& bytes, QString* why) const {
    QFile file(path);
    if (file.open(QIODevice::WriteOnly | QIODevice::NewOnly) && file.write(bytes) == bytes.size() &&
        file.flush())
        return true;
    if (why)
        *why = path + ": " + file.errorString();
    return false;
}
