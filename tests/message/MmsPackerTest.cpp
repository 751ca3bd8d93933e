#include "MmsPacker.h"
#include "FakeClock.h"
#include "MmsPartReader.h"
#include "QtPrinters.h"
#include "WspWriter.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtEndian>
#include <gtest/gtest.h>
#include <optional>
#include <stdexcept>

// The packed messages are read back twice: by tshark's MMS dissector, which gets
// the file as the body of an HTTP POST in a capture made here, and by a strict
// decoder below that knows only the fields the packer may write and insists
// that every declared length matches the data.
namespace {

QByteArray hex(const char* text) {
    return QByteArray::fromHex(text);
}

// ---- WSP primitives -------------------------------------------------------

TEST(WspWriterTest, UintvarCarriesSevenBitsPerByte) {
    EXPECT_EQ(WspWriter::uintvar(0).toHex(), "00");
    EXPECT_EQ(WspWriter::uintvar(127).toHex(), "7f");
    EXPECT_EQ(WspWriter::uintvar(128).toHex(), "8100");
    EXPECT_EQ(WspWriter::uintvar(16383).toHex(), "ff7f");
    EXPECT_EQ(WspWriter::uintvar(16384).toHex(), "818000");
    EXPECT_EQ(WspWriter::uintvar(0xFFFFFFFFu).toHex(), "8fffffff7f");
}

TEST(WspWriterTest, ValueLengthQuotesLengthsAboveThirty) {
    EXPECT_EQ(WspWriter::valueLength(0).toHex(), "00");
    EXPECT_EQ(WspWriter::valueLength(30).toHex(), "1e");
    EXPECT_EQ(WspWriter::valueLength(31).toHex(), "1f1f");
    EXPECT_EQ(WspWriter::valueLength(200).toHex(), "1f8148");
    EXPECT_EQ(WspWriter::withValueLength(QByteArray(31, 'x')).left(2).toHex(), "1f1f");
}

TEST(WspWriterTest, IntegersAndStrings) {
    EXPECT_EQ(WspWriter::shortInteger(0).toHex(), "80");
    EXPECT_EQ(WspWriter::shortInteger(0x12).toHex(), "92");
    EXPECT_EQ(WspWriter::longInteger(0).toHex(), "0100");
    EXPECT_EQ(WspWriter::longInteger(0x5F5E1000).toHex(), "045f5e1000");
    EXPECT_EQ(WspWriter::longInteger(0x100).toHex(), "020100");

    EXPECT_EQ(WspWriter::textString("abc").toHex(), "61626300");
    EXPECT_EQ(WspWriter::textString("").toHex(), "00");
    // A first byte of 0x80 or more would read as a short-integer: quoted.
    EXPECT_EQ(WspWriter::textString(hex("c3a478")).toHex(), "7fc3a47800");
    EXPECT_EQ(WspWriter::textString(hex("78c3a4")).toHex(), "78c3a400");
    EXPECT_EQ(WspWriter::textString(hex("7f41")).toHex(), "7f7f4100");
    EXPECT_EQ(WspWriter::textString(QByteArray("a\0b", 3)).toHex(), "616200");
    EXPECT_EQ(WspWriter::quotedString("<a.jpg>").toHex(), "223c612e6a70673e00");
}

TEST(WspWriterTest, EncodedStringValueUsesUtf8CharsetForNonAscii) {
    EXPECT_EQ(WspWriter::encodedStringValue("Hi").toHex(), "486900");
    const QByteArray utf8 = QStringLiteral("Gr\u00FC\u00DFe").toUtf8();
    EXPECT_EQ(WspWriter::encodedStringValue(QStringLiteral("Gr\u00FC\u00DFe")),
              char(utf8.size() + 2) + hex("ea") + utf8 + '\0');
    // Leading non-ASCII needs the quote inside the charset form as well.
    EXPECT_EQ(WspWriter::encodedStringValue(QStringLiteral("\u00C4")).toHex(), "05ea7fc38400");
    // A leading control byte would pass for a value-length.
    EXPECT_EQ(WspWriter::encodedStringValue(QStringLiteral("\x05x")).toHex(), "04ea057800");
}

// ---- Strict decoder -------------------------------------------------------

struct DecodedPart {
    QString mediaType;
    bool utf8Charset = false;
    QString contentId;
    QString location;
    QByteArray data;
};

struct DecodedMessage {
    QList<quint8> fieldOrder;
    int messageType = -1;
    QByteArray transactionId;
    int version = -1;
    QByteArray messageId;
    std::optional<quint64> date;
    bool fromInsertAddress = false;
    QByteArray fromAddress;
    bool subjectUtf8 = false;
    QString subject;
    int messageClass = -1;
    int contentType = -1;
    QString typeParameter;
    QString startParameter;
    QList<DecodedPart> parts;
};

class StrictReader {
public:
    StrictReader(const QByteArray& data, qsizetype begin, qsizetype end)
        : m_data(data), m_pos(begin), m_end(end) {}

    bool atEnd() const { return m_pos == m_end; }
    quint8 peek() const {
        need(1);
        return quint8(m_data[m_pos]);
    }
    quint8 byte() {
        const quint8 value = peek();
        ++m_pos;
        return value;
    }
    QByteArray take(qsizetype count) {
        need(count);
        const QByteArray bytes = m_data.mid(m_pos, count);
        m_pos += count;
        return bytes;
    }
    quint32 uintvar() {
        quint64 value = 0;
        for (int i = 0; i < 5; ++i) {
            const quint8 b = byte();
            if (i == 0 && b == 0x80)
                throw std::runtime_error("uintvar with a leading zero group");
            value = (value << 7) | (b & 0x7F);
            if (!(b & 0x80)) {
                if (value > 0xFFFFFFFFu)
                    throw std::runtime_error("uintvar above 32 bits");
                return quint32(value);
            }
        }
        throw std::runtime_error("uintvar longer than 5 bytes");
    }
    quint32 valueLength() {
        const quint8 b = byte();
        if (b <= 30)
            return b;
        if (b == 0x1F)
            return uintvar();
        throw std::runtime_error("not a value-length");
    }
    int shortInteger() {
        const quint8 b = byte();
        if (!(b & 0x80))
            throw std::runtime_error("not a short-integer");
        return b & 0x7F;
    }
    quint64 longInteger() {
        const quint8 length = byte();
        if (length < 1 || length > 8)
            throw std::runtime_error("bad long-integer length");
        quint64 value = 0;
        for (quint8 b : take(length))
            value = (value << 8) | b;
        return value;
    }
    QByteArray textString() {
        if (peek() < 0x20 && peek() != 0)
            throw std::runtime_error("text-string starting with a control byte");
        if (peek() >= 0x80)
            throw std::runtime_error("text-string starting high without a quote");
        if (peek() == 0x7F)
            byte();
        const qsizetype nul = m_data.indexOf('\0', m_pos);
        if (nul < 0 || nul >= m_end)
            throw std::runtime_error("unterminated text-string");
        const QByteArray text = m_data.mid(m_pos, nul - m_pos);
        m_pos = nul + 1;
        return text;
    }
    QByteArray quotedString() {
        if (byte() != '"')
            throw std::runtime_error("quoted-string without its quote");
        const qsizetype nul = m_data.indexOf('\0', m_pos);
        if (nul < 0 || nul >= m_end)
            throw std::runtime_error("unterminated quoted-string");
        const QByteArray text = m_data.mid(m_pos, nul - m_pos);
        m_pos = nul + 1;
        return text;
    }
    // A reader over the next count bytes, which this one skips.
    StrictReader sub(qsizetype count) {
        need(count);
        StrictReader inner(m_data, m_pos, m_pos + count);
        m_pos += count;
        return inner;
    }
    void expectEnd(const char* what) const {
        if (!atEnd())
            throw std::runtime_error(std::string(what) + ": length does not match the data");
    }

private:
    void need(qsizetype count) const {
        if (count < 0 || m_end - m_pos < count)
            throw std::runtime_error("data ends early");
    }

    const QByteArray& m_data;
    qsizetype m_pos;
    qsizetype m_end;
};

QString mediaOf(StrictReader& in) {
    if (in.peek() >= 0x80) {
        static const QHash<int, QString> known = {{0x03, "text/plain"},
                                                  {0x1D, "image/gif"},
                                                  {0x1E, "image/jpeg"},
                                                  {0x20, "image/png"},
                                                  {0x21, "image/vnd.wap.wbmp"}};
        const int code = in.shortInteger();
        if (!known.contains(code))
            throw std::runtime_error("unexpected well-known media");
        return known.value(code);
    }
    return QString::fromLatin1(in.textString());
}

DecodedPart decodePart(StrictReader& in) {
    const quint32 headersLength = in.uintvar();
    const quint32 dataLength = in.uintvar();
    StrictReader headers = in.sub(headersLength);
    DecodedPart part;
    if (headers.peek() < 0x20) {
        StrictReader type = headers.sub(headers.valueLength());
        part.mediaType = mediaOf(type);
        while (!type.atEnd()) {
            if (type.shortInteger() != 0x01 || type.shortInteger() != 106)
                throw std::runtime_error("unexpected content-type parameter");
            part.utf8Charset = true;
        }
    } else {
        part.mediaType = mediaOf(headers);
    }
    while (!headers.atEnd()) {
        const quint8 field = headers.byte();
        if (field == 0xC0)
            part.contentId = QString::fromUtf8(headers.quotedString());
        else if (field == 0x8E)
            part.location = QString::fromUtf8(headers.textString());
        else
            throw std::runtime_error("unexpected part header");
    }
    part.data = in.take(dataLength);
    return part;
}

void decodeContentType(StrictReader& in, DecodedMessage* message) {
    StrictReader value = in.sub(in.valueLength());
    message->contentType = value.shortInteger();
    while (!value.atEnd()) {
        const int parameter = value.shortInteger();
        if (parameter == 0x09)
            message->typeParameter = QString::fromLatin1(value.textString());
        else if (parameter == 0x0A)
            message->startParameter = QString::fromUtf8(value.textString());
        else
            throw std::runtime_error("unexpected multipart parameter");
    }
}

void decodeSubject(StrictReader& in, DecodedMessage* message) {
    if (in.peek() > 0x1F) {
        message->subject = QString::fromLatin1(in.textString());
        return;
    }
    StrictReader value = in.sub(in.valueLength());
    if (value.shortInteger() != 106)
        throw std::runtime_error("subject charset is not UTF-8");
    message->subjectUtf8 = true;
    message->subject = QString::fromUtf8(value.textString());
    value.expectEnd("Subject");
}

void decodeField(quint8 field, StrictReader& in, DecodedMessage* message) {
    switch (field) {
    case 0x8C:
        message->messageType = in.shortInteger();
        break;
    case 0x98:
        message->transactionId = in.textString();
        break;
    case 0x8D:
        message->version = in.shortInteger();
        break;
    case 0x8B:
        message->messageId = in.textString();
        break;
    case 0x85:
        message->date = in.longInteger();
        break;
    case 0x89: {
        StrictReader value = in.sub(in.valueLength());
        const quint8 token = value.byte();
        message->fromInsertAddress = token == 0x81;
        if (token == 0x80)
            message->fromAddress = value.textString();
        value.expectEnd("From");
        break;
    }
    case 0x96:
        decodeSubject(in, message);
        break;
    case 0x8A:
        message->messageClass = in.shortInteger();
        break;
    case 0x84:
        decodeContentType(in, message);
        break;
    default:
        throw std::runtime_error("unexpected header field");
    }
}

DecodedMessage decodeOrThrow(const QByteArray& file) {
    StrictReader in(file, 0, file.size());
    DecodedMessage message;
    while (message.fieldOrder.isEmpty() || message.fieldOrder.back() != 0x84) {
        const quint8 field = in.byte();
        if (message.fieldOrder.contains(field))
            throw std::runtime_error("repeated header field");
        message.fieldOrder.append(field);
        decodeField(field, in, &message);
    }
    const QList<quint8> leading = {0x8C, 0x98, 0x8D};
    if (message.fieldOrder.mid(0, 3) != leading || !message.fieldOrder.contains(0x89))
        throw std::runtime_error("mandatory headers missing or out of order");
    const quint32 count = in.uintvar();
    for (quint32 i = 0; i < count; ++i)
        message.parts.append(decodePart(in));
    in.expectEnd("message");
    return message;
}

std::optional<DecodedMessage> decode(const QByteArray& file, std::string* error) {
    try {
        return decodeOrThrow(file);
    } catch (const std::runtime_error& e) {
        *error = e.what();
        return std::nullopt;
    }
}

// ---- A capture of the message as an HTTP POST ------------------------------

QByteArray be16(quint16 value) {
    QByteArray bytes(2, '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

QByteArray be32(quint32 value) {
    QByteArray bytes(4, '\0');
    qToBigEndian(value, bytes.data());
    return bytes;
}

QByteArray le32(quint32 value) {
    QByteArray bytes(4, '\0');
    qToLittleEndian(value, bytes.data());
    return bytes;
}

quint16 internetChecksum(const QByteArray& bytes) {
    quint32 sum = 0;
    for (qsizetype i = 0; i < bytes.size(); i += 2) {
        const quint8 high = quint8(bytes[i]);
        const quint8 low = i + 1 < bytes.size() ? quint8(bytes[i + 1]) : 0;
        sum += (high << 8) | low;
    }
    while (sum >> 16)
        sum = (sum & 0xFFFF) + (sum >> 16);
    return quint16(~sum);
}

// Builds a classic pcap of one TCP connection on the loopback addresses:
// handshake, the client's bytes in segments, the server's acknowledgement.
class CaptureBuilder {
public:
    void send(bool fromClient, quint8 flags, const QByteArray& payload = {}) {
        const QByteArray client = hex("7f000001"), server = hex("7f000002");
        const QByteArray source = fromClient ? client : server;
        const QByteArray target = fromClient ? server : client;
        quint32& seq = fromClient ? m_clientSeq : m_serverSeq;
        const quint32 ack = fromClient ? m_serverSeq : m_clientSeq;
        QByteArray tcp = be16(fromClient ? 40000 : 80) + be16(fromClient ? 80 : 40000) + be32(seq) +
                         be32(flags & 0x10 ? ack : 0) + hex("50") + char(flags) + be16(65535) +
                         be16(0) + be16(0) + payload;
        const QByteArray pseudo = source + target + hex("0006") + be16(quint16(tcp.size()));
        const QByteArray sum = be16(internetChecksum(pseudo + tcp));
        tcp[16] = sum[0];
        tcp[17] = sum[1];
        QByteArray ip = hex("4500") + be16(quint16(20 + tcp.size())) + be16(m_ipId++) +
                        hex("40004006") + be16(0) + source + target;
        const QByteArray ipSum = be16(internetChecksum(ip));
        ip[10] = ipSum[0];
        ip[11] = ipSum[1];
        const QByteArray frame = hex("020000000002") + hex("020000000001") + hex("0800") + ip + tcp;
        m_pcap += le32(1700000000) + le32(m_usec++) + le32(quint32(frame.size())) +
                  le32(quint32(frame.size())) + frame;
        seq += quint32(payload.size()) + ((flags & 0x03) ? 1 : 0); // SYN and FIN count one
    }

    QByteArray httpPost(const QByteArray& body) {
        const QByteArray request = "POST /mms HTTP/1.1\r\nHost: 127.0.0.2\r\n"
                                   "Content-Type: application/vnd.wap.mms-message\r\n"
                                   "Content-Length: " +
                                   QByteArray::number(body.size()) + "\r\n\r\n" + body;
        const quint8 syn = 0x02, ack = 0x10, psh = 0x08;
        send(true, syn);
        send(false, syn | ack);
        send(true, ack);
        for (qsizetype at = 0; at < request.size(); at += 1400)
            send(true, psh | ack, request.mid(at, 1400));
        send(false, ack);
        send(false, psh | ack, "HTTP/1.1 200 OK\r\nContent-Length: 0\r\n\r\n");
        send(true, ack);
        return hex("d4c3b2a1") + hex("02000400") + le32(0) + le32(0) + le32(262144) + le32(1) +
               m_pcap;
    }

private:
    QByteArray m_pcap;
    quint32 m_clientSeq = 1000;
    quint32 m_serverSeq = 5000;
    quint16 m_ipId = 1;
    quint32 m_usec = 0;
};

// ---- The SMIL set -----------------------------------------------------------

const char* const fileList = "Slide1.txt;a.jpg;b.amr;;texts.xml;mms.smil;";

class MmsPackerTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_dir.isValid());
        QImage picture(64, 48, QImage::Format_RGB32);
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                picture.setPixel(x, y, qRgb(x * 4, y * 5, (x + y) * 2));
        ASSERT_TRUE(picture.save(path("a.jpg"), "JPG", 90));
        QByteArray amr = "#!AMR\n";
        for (int frame = 0; frame < 700; ++frame)
            amr += char(0x3C) + QByteArray(31, char(0x80 | frame));
        write("b.amr", amr);
        write("Slide1.txt", QStringLiteral("Gr\u00FC\u00DF dich, Welt\r\n").toUtf8());
        write("texts.xml", "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n<mms-text-files/>");
        write("mms.smil", "<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n<smil><head><layout>"
                          "<root-layout width=\"160\" height=\"160\" /></layout></head><body>"
                          "<par dur=\"3000ms\"><img src=\"a.jpg\" region=\"Image\" />"
                          "<audio src=\"b.amr\" /><text src=\"Slide1.txt\" region=\"Text\" /></par>"
                          "</body></smil>");
        for (const auto& [extension, type] :
             {std::pair{".JPG", "image/jpeg"}, std::pair{"amr", "audio/amr"},
              std::pair{"txt", "text/plain"}, std::pair{"smil", "application/smil"}})
            ASSERT_EQ(m_packer._RegisterMimeType(extension, type, 0), 0);
    }

    QString path(const QString& name) const { return m_dir.filePath(name); }
    void write(const QString& name, const QByteArray& bytes) {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QByteArray read(const QString& name) const {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    QStringList folderEntries() const {
        return QDir(m_dir.path()).entryList(QDir::Files | QDir::Hidden, QDir::Name);
    }

    int pack(const QString& list = fileList, const QString& name = "Holiday") {
        return m_packer._Pack(m_dir.path() + "/", "mms.wap", list, name);
    }

    DecodedMessage decodeOutput() {
        std::string error;
        const std::optional<DecodedMessage> message = decode(read("mms.wap"), &error);
        EXPECT_TRUE(message) << error;
        return message.value_or(DecodedMessage());
    }

    // tshark's decoding of the packed file sent as an HTTP POST.
    QString tshark(const QStringList& options) {
        write("post.pcap", CaptureBuilder().httpPost(read("mms.wap")));
        QProcess tshark;
        tshark.start("tshark", QStringList{"-r", path("post.pcap")} + options);
        EXPECT_TRUE(tshark.waitForFinished(60000));
        EXPECT_EQ(tshark.exitCode(), 0) << tshark.readAllStandardError().toStdString();
        return QString::fromUtf8(tshark.readAllStandardOutput());
    }
    QString tsharkView() {
        return tshark({"-V", "-o", "tcp.check_checksum:TRUE", "-o", "ip.check_checksum:TRUE"});
    }

    QTemporaryDir m_dir;
    MmsPacker m_packer;
};

// The MMS layer of a verbose decoding, to keep failure messages short.
std::string mmsLayer(const QString& view) {
    const qsizetype begin = view.indexOf("MMS Message Encapsulation");
    return begin < 0 ? std::string("no MMS layer") : view.mid(begin, 1500).toStdString();
}

bool hasNoDissectorComplaint(const QString& view) {
    return !view.contains("Malformed") && !view.contains("Expert Info (Warning") &&
           !view.contains("Expert Info (Error");
}

QStringList partNames(const DecodedMessage& message) {
    QStringList names;
    for (const DecodedPart& part : message.parts)
        names.append(part.location);
    return names;
}

TEST_F(MmsPackerTest, TsharkDecodesEveryHeaderAndPart) {
    ASSERT_EQ(pack(), 0) << m_packer.lastError().toStdString();
    const DecodedMessage message = decodeOutput();
    const QString view = tsharkView();
    EXPECT_TRUE(hasNoDissectorComplaint(view)) << mmsLayer(view);

    for (const QString& line :
         {QStringLiteral("MMS Message Encapsulation, Type: m-send-req"),
          QStringLiteral("X-Mms-Message-Type: m-send-req (0x80)"),
          "X-Mms-Transaction-ID: " + QString::fromLatin1(message.transactionId),
          QStringLiteral("X-Mms-MMS-Version: 1.2"), QStringLiteral("From: <insert address>"),
          QStringLiteral("Subject: Holiday"),
          QStringLiteral("X-Mms-Message-Class: Personal (0x80)"),
          QStringLiteral("Content-Type: application/vnd.wap.multipart.related; "
                         "type=application/smil; Start=<mms.smil>")})
        EXPECT_TRUE(view.contains(line)) << line.toStdString() << mmsLayer(view);
    EXPECT_TRUE(view.contains(QRegularExpression("\\n    Date: \\w")));

    EXPECT_EQ(view.count(QRegularExpression("\\bPart: \\d+, content-type: ")), 4);
    for (const QString& line : {QStringLiteral("Part: 1, content-type: application/smil"),
                                QStringLiteral("Part: 2, content-type: text/plain"),
                                QStringLiteral("Content-Type: text/plain; charset=UTF-8"),
                                QStringLiteral("Part: 3, content-type: image/jpeg"),
                                QStringLiteral("Part: 4, content-type: audio/amr"),
                                QStringLiteral("Gr\u00FC\u00DF dich, Welt"),
                                QStringLiteral("JPEG File Interchange Format")})
        EXPECT_TRUE(view.contains(line)) << line.toStdString() << mmsLayer(view);
    for (const char* name : {"mms.smil", "Slide1.txt", "a.jpg", "b.amr"}) {
        EXPECT_TRUE(view.contains(QStringLiteral("Content-Id: \"<%1>\"").arg(name))) << name;
        EXPECT_TRUE(view.contains(QStringLiteral("Content-Location: %1\n").arg(name))) << name;
    }
    EXPECT_TRUE(view.contains(
        QStringLiteral("Media type: audio/amr (%1 bytes)").arg(read("b.amr").size())));
}

TEST_F(MmsPackerTest, StrictDecoderFindsEveryFileByteIdentical) {
    FakeClock clock(0, QDateTime(QDate(2024, 3, 5), QTime(10, 20, 30), Qt::UTC));
    ScopedClock scoped(clock);
    const QStringList before = folderEntries();
    ASSERT_EQ(pack(), 0) << m_packer.lastError().toStdString();
    QStringList expected = before + QStringList{"mms.wap"};
    expected.sort();
    EXPECT_EQ(folderEntries(), expected); // no temporary file left over

    const DecodedMessage message = decodeOutput();
    EXPECT_EQ(message.fieldOrder, (QList<quint8>{0x8C, 0x98, 0x8D, 0x85, 0x89, 0x96, 0x8A, 0x84}));
    EXPECT_EQ(message.messageType, 0x00);
    EXPECT_EQ(message.version, 0x12);
    EXPECT_EQ(message.date, quint64(clock.now().toSecsSinceEpoch()));
    EXPECT_TRUE(message.fromInsertAddress);
    EXPECT_FALSE(message.subjectUtf8);
    EXPECT_EQ(message.subject, "Holiday");
    EXPECT_EQ(message.messageClass, 0x00);
    EXPECT_EQ(message.contentType, 0x33);
    EXPECT_EQ(message.typeParameter, "application/smil");
    EXPECT_EQ(message.startParameter, "<mms.smil>");

    // The SMIL first, then the list order; the texts index stays out.
    EXPECT_EQ(partNames(message), (QStringList{"mms.smil", "Slide1.txt", "a.jpg", "b.amr"}));
    const QStringList types = {"application/smil", "text/plain", "image/jpeg", "audio/amr"};
    for (int i = 0; i < message.parts.size() && i < types.size(); ++i) {
        const DecodedPart& part = message.parts[i];
        EXPECT_EQ(part.mediaType, types[i]);
        EXPECT_EQ(part.utf8Charset, part.mediaType == "text/plain") << i;
        EXPECT_EQ(part.contentId, "<" + part.location + ">");
        EXPECT_EQ(part.data, read(part.location)) << part.location.toStdString();
    }
}

TEST_F(MmsPackerTest, StoredPathsDuplicatesAndOneTransactionIdPerFile) {
    FakeClock clock(0, QDateTime(QDate(2024, 3, 5), QTime(10, 20, 30), Qt::UTC));
    ScopedClock scoped(clock);
    // Stored folders use backslashes and end with one.
    const QString stored = QString(m_dir.path()).replace(u'/', u'\\') + u'\\';
    ASSERT_EQ(m_packer._Pack(stored, "first.wap", "a.jpg;mms.smil;a.jpg", "One"), 0)
        << m_packer.lastError().toStdString();
    ASSERT_EQ(m_packer._Pack(stored, "second.wap", "mms.smil", "Two"), 0);

    std::string error;
    const std::optional<DecodedMessage> first = decode(read("first.wap"), &error);
    ASSERT_TRUE(first) << error;
    const std::optional<DecodedMessage> second = decode(read("second.wap"), &error);
    ASSERT_TRUE(second) << error;
    EXPECT_EQ(partNames(*first), (QStringList{"mms.smil", "a.jpg"}));
    EXPECT_EQ(partNames(*second), QStringList{"mms.smil"});
    // The same clock reading for both: the ids must still differ.
    EXPECT_FALSE(first->transactionId.isEmpty());
    EXPECT_NE(first->transactionId, second->transactionId);
}

TEST_F(MmsPackerTest, NonAsciiSubjectTravelsAsUtf8) {
    const QString name = QStringLiteral("\u00C4pfel & Gr\u00FC\u00DFe aus K\u00F6ln");
    ASSERT_EQ(pack(fileList, name), 0) << m_packer.lastError().toStdString();
    const DecodedMessage message = decodeOutput();
    EXPECT_TRUE(message.subjectUtf8);
    EXPECT_EQ(message.subject, name);
    const QString view = tsharkView();
    EXPECT_TRUE(hasNoDissectorComplaint(view)) << mmsLayer(view);
    EXPECT_TRUE(view.contains("X-Mms-Message-Class: Personal (0x80)")) << mmsLayer(view);
    // This tshark skips the charset and shows each byte above 0x7F as a
    // replacement character, so its text view cannot show the name; its raw
    // bytes of the Subject field must be exactly the UTF-8 form.
    const QRegularExpressionMatch raw =
        QRegularExpression(R"re("mmse\.subject_raw": \[\s*"([0-9a-f]+)")re")
            .match(tshark({"-T", "json", "-x", "-Y", "mmse"}));
    ASSERT_TRUE(raw.hasMatch());
    const QByteArray text = '\x7f' + name.toUtf8() + '\0';
    EXPECT_EQ(raw.captured(1).toLatin1(),
              (QByteArray("\x96") + char(1 + text.size()) + '\xea' + text).toHex());
}

TEST_F(MmsPackerTest, RetrieveConfirmationCarriesDateAndMessageId) {
    m_packer.setMessageType(MmsPacker::MessageType::RetrieveConfirmation);
    ASSERT_EQ(pack(), 0) << m_packer.lastError().toStdString();
    const DecodedMessage message = decodeOutput();
    EXPECT_EQ(message.messageType, 0x04);
    EXPECT_EQ(message.fieldOrder,
              (QList<quint8>{0x8C, 0x98, 0x8D, 0x8B, 0x85, 0x89, 0x96, 0x8A, 0x84}));
    EXPECT_FALSE(message.messageId.isEmpty());
    EXPECT_EQ(message.parts.size(), 4);
    // A received message names its sender; only one being sent leaves it to the relay.
    EXPECT_FALSE(message.fromInsertAddress);
    EXPECT_EQ(message.fromAddress, "vellumo@localhost");

    const QString view = tsharkView();
    EXPECT_TRUE(hasNoDissectorComplaint(view)) << mmsLayer(view);
    for (const QString& line : {QStringLiteral("MMS Message Encapsulation, Type: m-retrieve-conf"),
                                "Message-Id: " + QString::fromLatin1(message.messageId),
                                QStringLiteral("From: vellumo@localhost"),
                                QStringLiteral("Part: 4, content-type: audio/amr")})
        EXPECT_TRUE(view.contains(line)) << line.toStdString() << mmsLayer(view);
}

TEST_F(MmsPackerTest, FailuresLeaveNoFileBehind) {
    write("mms.wap", "previous message");
    write("c.xyz", "unknown kind");
    const QStringList before = folderEntries();
    struct Case {
        QString list;
        int result;
        QString named;
    };
    const QList<Case> cases = {
        {"Slide1.txt;gone.jpg;mms.smil", MmsPacker::FileUnreadable, "gone.jpg"},
        {"a.jpg;c.xyz;mms.smil", MmsPacker::NoMimeType, "c.xyz"},
        {"a.jpg;b.amr;texts.xml", MmsPacker::NoSmil, "SMIL"},
        {";;", MmsPacker::NoSmil, "SMIL"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(pack(c.list), c.result) << c.list.toStdString();
        EXPECT_TRUE(m_packer.lastError().contains(c.named)) << m_packer.lastError().toStdString();
    }
    // A folder that does not exist cannot take the output.
    EXPECT_EQ(m_packer._Pack(m_dir.path(), "missing/mms.wap", fileList, "x"),
              MmsPacker::WriteFailed);
    EXPECT_TRUE(m_packer.lastError().contains("missing/mms.wap"));
    // A listed folder is no file.
    QDir(m_dir.path()).mkdir("sub.jpg");
    EXPECT_EQ(pack("sub.jpg;mms.smil"), MmsPacker::FileUnreadable);
    QDir(m_dir.path()).rmdir("sub.jpg");

    EXPECT_EQ(read("mms.wap"), "previous message");
    EXPECT_EQ(folderEntries(), before);
    ASSERT_EQ(pack(), 0);
    EXPECT_TRUE(m_packer.lastError().isEmpty());
    EXPECT_NE(read("mms.wap"), "previous message");
}

TEST_F(MmsPackerTest, MimeTableRegistration) {
    EXPECT_EQ(m_packer._RegisterMimeType("gif", "image/gif", 1), MmsPacker::BadArgument);
    EXPECT_EQ(m_packer._RegisterMimeType("", "image/gif", 0), MmsPacker::BadArgument);
    EXPECT_EQ(m_packer._RegisterMimeType("tar.gz", "application/x-gtar", 0),
              MmsPacker::BadArgument);
    EXPECT_EQ(m_packer._RegisterMimeType("gif", "image", 0), MmsPacker::BadArgument);
    EXPECT_EQ(m_packer._RegisterMimeType("gif", "image/g if", 0), MmsPacker::BadArgument);
    EXPECT_FALSE(m_packer.lastError().isEmpty());

    // A later registration replaces the earlier one, whatever the case.
    ASSERT_EQ(m_packer._RegisterMimeType("Jpg", "Image/PNG", 0), 0);
    ASSERT_EQ(pack("a.jpg;mms.smil"), 0) << m_packer.lastError().toStdString();
    const DecodedMessage message = decodeOutput();
    ASSERT_EQ(message.parts.size(), 2);
    EXPECT_EQ(message.parts[1].mediaType, "image/png");

    m_packer.clearMimeTypes();
    EXPECT_EQ(pack("a.jpg;mms.smil"), MmsPacker::NoMimeType);
}

} // namespace

TEST_F(MmsPackerTest, TheProgramReadsBackEveryPartItPackedAndStopsAtACut) {
    for (const auto type :
         {MmsPacker::MessageType::SendRequest, MmsPacker::MessageType::RetrieveConfirmation}) {
        m_packer.setMessageType(type);
        ASSERT_EQ(pack(fileList, QStringLiteral("\u00C4pfel")), 0);
        MmsPartReader reader;
        ASSERT_TRUE(reader.read(read("mms.wap"))) << reader.error().toStdString();
        QStringList names;
        for (const MmsPartReader::Part& part : reader.parts()) {
            names << part.name;
            EXPECT_EQ(part.data, read(part.name)) << part.name.toStdString();
        }
        EXPECT_EQ(names, (QStringList{"mms.smil", "Slide1.txt", "a.jpg", "b.amr"}));
    }
    const QByteArray whole = read("mms.wap");
    for (qsizetype cut = 0; cut < whole.size(); cut += 37) {
        MmsPartReader reader;
        EXPECT_FALSE(reader.read(whole.left(cut))) << cut;
        EXPECT_LT(reader.parts().size(), 4);
    }
}
