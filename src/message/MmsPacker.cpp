#include "MmsPacker.h"

#include "AtomicFile.h"
#include "Clock.h"
#include "PlainFileName.h"
#include "WspWriter.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <atomic>

using namespace WspWriter;

namespace {
// Header field codes (sent with the high bit set).
constexpr char fieldContentType = char(0x84);
constexpr char fieldDate = char(0x85);
constexpr char fieldFrom = char(0x89);
constexpr char fieldMessageClass = char(0x8A);
constexpr char fieldMessageId = char(0x8B);
constexpr char fieldMessageType = char(0x8C);
constexpr char fieldMmsVersion = char(0x8D);
constexpr char fieldSubject = char(0x96);
constexpr char fieldTransactionId = char(0x98);
// Part header codes.
constexpr char partContentLocation = char(0x8E);
constexpr char partContentId = char(0xC0);
// Content-Type parameter codes.
constexpr quint8 paramCharset = 0x01;
constexpr quint8 paramType = 0x09;
constexpr quint8 paramStart = 0x0A;

constexpr quint8 typeSendRequest = 0x00;        // m-send-req
constexpr quint8 typeRetrieveConfirm = 0x04;    // m-retrieve-conf
constexpr quint8 mmsVersion12 = (1 << 4) | 2;   // major in the high bits: 1.2
constexpr char insertAddressToken = char(0x81); // the sender's address is filled in on the way
constexpr char addressPresentToken = char(0x80);
// Who a message made here as received says it is from: no phone number is
// known, so the program on this computer, in the form of a mail address.
const QString retrievedSender = QStringLiteral("vellumo@localhost");
constexpr quint8 classPersonal = 0x00;
constexpr quint8 multipartRelated = 0x33;
constexpr quint8 charsetUtf8 = 106;

const QString smilType = QStringLiteral("application/smil");
// The texts index of the template and package formats; see the class comment.
const QString textsIndexName = QStringLiteral("texts.xml");
constexpr qint64 copyChunk = 64 * 1024;

int wellKnownMedia(const QString& mimeType) {
    static const QHash<QString, int> codes = {
        {QStringLiteral("text/plain"), 0x03},
        {QStringLiteral("image/gif"), 0x1D},
        {QStringLiteral("image/jpeg"), 0x1E},
        {QStringLiteral("image/png"), 0x20},
        {QStringLiteral("image/vnd.wap.wbmp"), 0x21},
        {QStringLiteral("application/vnd.wap.multipart.related"), multipartRelated},
    };
    return codes.value(mimeType, -1);
}

QByteArray contentType(const QString& mimeType) {
    const int code = wellKnownMedia(mimeType);
    const QByteArray media =
        code >= 0 ? shortInteger(quint8(code)) : textString(mimeType.toLatin1());
    if (!mimeType.startsWith(QLatin1String("text/")))
        return media;
    return withValueLength(media + shortInteger(paramCharset) + shortInteger(charsetUtf8));
}

QByteArray partHeaders(const QString& name, const QString& mimeType) {
    const QByteArray utf8Name = name.toUtf8();
    return contentType(mimeType) + partContentId + quotedString('<' + utf8Name + '>') +
           partContentLocation + textString(utf8Name);
}

// Unique across files of one run (the counter) and across runs and processes
// (the time and the process id).
// Every field at its widest (a pid has at most seven digits, the counter ten),
// so every packing of a message has the same length: a message measured
// against a size limit is the size it is when sent.
QString uniqueStamp() {
    static std::atomic<quint32> counter{0};
    return QStringLiteral("%1-%2-%3")
        .arg(Clock::instance().now().toMSecsSinceEpoch(), 12, 16, QLatin1Char('0'))
        .arg(QCoreApplication::applicationPid(), 7, 10, QLatin1Char('0'))
        .arg(++counter, 10, 10, QLatin1Char('0'));
}

bool isMimeType(const QString& text) {
    if (!text.contains(u'/'))
        return false;
    for (QChar c : text) {
        if (c.unicode() <= 0x20 || c.unicode() >= 0x7F)
            return false;
    }
    return true;
}

QString diskPath(const QString& path) {
    return QString(path).replace(u'\\', u'/');
}
} // namespace

int MmsPacker::_RegisterMimeType(const QString& extension, const QString& mimeType, int flag) {
    QString key = extension.trimmed().toLower();
    if (key.startsWith(u'.'))
        key.remove(0, 1);
    const QString type = mimeType.trimmed().toLower();
    if (flag != 0)
        return fail(BadArgument, QStringLiteral("Unsupported registration flag %1").arg(flag));
    if (key.isEmpty() || key.contains(u'.'))
        return fail(BadArgument, QStringLiteral("Not a file extension: \"%1\"").arg(extension));
    if (!isMimeType(type))
        return fail(BadArgument, QStringLiteral("Not a MIME type: \"%1\"").arg(mimeType));
    m_mimeTypes.insert(key, type);
    m_lastError.clear();
    return Success;
}

void MmsPacker::clearMimeTypes() {
    m_mimeTypes.clear();
}

void MmsPacker::setMessageType(MessageType type) {
    m_messageType = type;
}

QString MmsPacker::lastError() const {
    return m_lastError;
}

int MmsPacker::_Pack(const QString& folder, const QString& outputName, const QString& fileList,
                     const QString& messageName) {
    const QDir dir(diskPath(folder));
    QList<Part> parts;
    if (const int result = collectParts(dir, fileList, &parts); result != Success)
        return result;
    const QString target = dir.filePath(diskPath(outputName));
    if (const int result = writeMessage(target, messageHeaders(messageName, parts.front()), parts);
        result != Success)
        return result;
    m_lastError.clear();
    return Success;
}

QStringList MmsPacker::partNames(const QString& fileList) {
    QStringList names;
    for (const QString& entry : fileList.split(u';', Qt::SkipEmptyParts)) {
        const QString name = entry.trimmed();
        if (!name.isEmpty() && !names.contains(name) &&
            name.compare(textsIndexName, Qt::CaseInsensitive) != 0)
            names.append(name);
    }
    return names;
}

// Checks every listed file before anything is written, and puts the first SMIL
// file in front as the start part.
int MmsPacker::collectParts(const QDir& folder, const QString& fileList, QList<Part>* parts) {
    int start = -1;
    for (const QString& name : partNames(fileList)) {
        Part part;
        part.name = name;
        QString why;
        part.path = PlainFileName::existingFile(folder.path(), part.name, &why);
        if (part.path.isEmpty())
            return fail(FileUnreadable, QStringLiteral("Unusable file in the list: %1").arg(why));
        if (const int result = checkPart(&part); result != Success)
            return result;
        if (start < 0 && part.mimeType == smilType)
            start = int(parts->size());
        parts->append(part);
    }
    if (start < 0)
        return fail(NoSmil, QStringLiteral("The file list names no SMIL file"));
    parts->move(start, 0);
    return Success;
}

int MmsPacker::checkPart(Part* part) {
    const QFileInfo info(part->path);
    if (!info.isFile() || !info.isReadable())
        return fail(
            FileUnreadable,
            QStringLiteral("Missing or unreadable file %1 (%2)").arg(part->name, part->path));
    part->mimeType = m_mimeTypes.value(info.suffix().toLower());
    if (part->mimeType.isEmpty())
        return fail(NoMimeType, QStringLiteral("No MIME type registered for %1").arg(part->name));
    part->size = info.size();
    if (part->size > qint64(maxUintvar))
        return fail(TooLarge,
                    QStringLiteral("File %1 is too large for a message part").arg(part->name));
    return Success;
}

QByteArray MmsPacker::messageHeaders(const QString& messageName, const Part& start) const {
    const bool retrieved = m_messageType == MessageType::RetrieveConfirmation;
    const QString stamp = uniqueStamp();
    QByteArray headers;
    headers += fieldMessageType + shortInteger(retrieved ? typeRetrieveConfirm : typeSendRequest);
    headers += fieldTransactionId + textString("T" + stamp.toLatin1());
    headers += fieldMmsVersion + shortInteger(mmsVersion12);
    // A retrieved message carries the identity the relay gave it.
    if (retrieved)
        headers += fieldMessageId + textString("M" + stamp.toLatin1());
    headers += fieldDate +
               longInteger(quint64(qMax<qint64>(0, Clock::instance().now().toSecsSinceEpoch())));
    // Only a message on its way to the relay leaves its sender to be filled in;
    // one that arrived says who sent it.
    headers += fieldFrom +
               withValueLength(retrieved ? addressPresentToken + encodedStringValue(retrievedSender)
                                         : QByteArray(1, insertAddressToken));
    headers += fieldSubject + encodedStringValue(messageName);
    headers += fieldMessageClass + shortInteger(classPersonal);
    // Content-Type must come last: the body follows it directly.
    headers += fieldContentType +
               withValueLength(shortInteger(multipartRelated) + shortInteger(paramType) +
                               textString(start.mimeType.toLatin1()) + shortInteger(paramStart) +
                               textString('<' + start.name.toUtf8() + '>'));
    return headers;
}

int MmsPacker::writeMessage(const QString& target, const QByteArray& headers,
                            const QList<Part>& parts) {
    AtomicFile out(target);
    if (!out.open(QIODevice::WriteOnly))
        return fail(WriteFailed,
                    QStringLiteral("Cannot create %1: %2").arg(target, out.errorString()));
    out.write(headers + uintvar(quint32(parts.size())));
    for (const Part& part : parts) {
        if (const int result = writePart(&out, part); result != Success) {
            out.cancelWriting();
            return result;
        }
    }
    if (!out.commit())
        return fail(WriteFailed,
                    QStringLiteral("Cannot write %1: %2").arg(target, out.errorString()));
    return Success;
}

// Streams the file's data after its part header; a file that changed size since
// it was checked would make the declared length wrong, so it fails the packing.
int MmsPacker::writePart(AtomicFile* out, const Part& part) {
    QFile file;
    QString why;
    if (!PlainFileName::open(QFileInfo(part.path).path(), part.name, file, &why))
        return fail(FileUnreadable, why);
    const QByteArray headers = partHeaders(part.name, part.mimeType);
    out->write(uintvar(quint32(headers.size())) + uintvar(quint32(part.size)) + headers);
    qint64 copied = 0;
    while (copied < part.size) {
        const QByteArray chunk = file.read(qMin(copyChunk, part.size - copied));
        if (chunk.isEmpty())
            break;
        out->write(chunk);
        copied += chunk.size();
    }
    if (copied != part.size || !file.atEnd())
        return fail(FileUnreadable, QStringLiteral("File %1 changed or could not be read: %2")
                                        .arg(part.path, file.errorString()));
    return Success;
}

int MmsPacker::fail(int result, const QString& reason) {
    m_lastError = reason;
    return result;
}
