#include "WavFile.h"

#include "AtomicFile.h"
#include <QFile>
#include <QtEndian>
#include <algorithm>
#include <cstring>

namespace {
constexpr quint16 kFormatPcm = 1;
constexpr quint16 kFormatExtensible = 0xFFFE;
constexpr qsizetype kFmtMinimum = 16;
// The GUID tail every WAVE_FORMAT_EXTENSIBLE sub-format shares; the first two
// bytes are the plain format tag.
constexpr unsigned char kSubFormatTail[14] = {0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80,
                                              0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};

quint16 u16(const char* p) {
    return qFromLittleEndian<quint16>(p);
}
quint32 u32(const char* p) {
    return qFromLittleEndian<quint32>(p);
}

struct FmtChunk {
    quint16 tag = 0;
    PcmFormat format;
    quint16 blockAlign = 0;
};

bool parseFmt(const char* p, qsizetype size, FmtChunk& fmt) {
    if (size < kFmtMinimum)
        return false;
    fmt.tag = u16(p);
    fmt.format.channels = u16(p + 2);
    fmt.format.sampleRate = static_cast<int>(std::min<quint32>(u32(p + 4), 0x7FFFFFFF));
    fmt.blockAlign = u16(p + 12);
    fmt.format.bitsPerSample = u16(p + 14);
    if (fmt.tag == kFormatExtensible) {
        // The real format sits in the sub-format GUID after the extension size.
        if (size < 40)
            return false;
        const char* guid = p + 24;
        fmt.tag = std::memcmp(guid + 2, kSubFormatTail, sizeof kSubFormatTail) == 0
                      ? u16(guid)
                      : kFormatExtensible;
    }
    return true;
}

void putU16(QByteArray& out, quint16 v) {
    char b[2];
    qToLittleEndian(v, b);
    out.append(b, 2);
}

void putU32(QByteArray& out, quint32 v) {
    char b[4];
    qToLittleEndian(v, b);
    out.append(b, 4);
}
} // namespace

WavFile::Error WavFile::parse(const QByteArray& bytes, PcmSound& sound) {
    if (bytes.size() < 12 || !bytes.startsWith("RIFF") || bytes.mid(8, 4) != "WAVE")
        return Error::NotWave;
    const char* base = bytes.constData();
    const qsizetype end = bytes.size();
    FmtChunk fmt;
    bool haveFmt = false;
    qsizetype pos = 12;
    while (pos + 8 <= end) {
        const QByteArray id(base + pos, 4);
        const qsizetype declared = u32(base + pos + 4);
        const qsizetype body = pos + 8;
        const qsizetype available = std::min(declared, end - body);
        if (id == "fmt ") {
            if (!parseFmt(base + body, available, fmt))
                return Error::NotWave;
            haveFmt = true;
        } else if (id == "data") {
            if (!haveFmt)
                return Error::NotWave;
            if (fmt.tag != kFormatPcm)
                return Error::Compressed;
            if (!fmt.format.isValid() || fmt.blockAlign != fmt.format.bytesPerFrame())
                return Error::Unsupported;
            sound = PcmSound(fmt.format, QByteArray(base + body, available));
            return Error::None;
        }
        // Chunks are padded to an even size.
        pos = body + declared + (declared & 1);
    }
    if (haveFmt && fmt.tag != kFormatPcm)
        return Error::Compressed;
    return haveFmt ? Error::NoData : Error::NotWave;
}

WavFile::Error WavFile::read(const QString& path, PcmSound& sound) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Error::Unreadable;
    return parse(file.readAll(), sound);
}

QByteArray WavFile::header(const PcmFormat& f, quint32 dataSize) {
    QByteArray out;
    out.append("RIFF");
    putU32(out, 36 + dataSize + (dataSize & 1));
    out.append("WAVEfmt ");
    putU32(out, 16);
    putU16(out, kFormatPcm);
    putU16(out, static_cast<quint16>(f.channels));
    putU32(out, static_cast<quint32>(f.sampleRate));
    putU32(out, static_cast<quint32>(f.bytesPerSecond()));
    putU16(out, static_cast<quint16>(f.bytesPerFrame()));
    putU16(out, static_cast<quint16>(f.bitsPerSample));
    out.append("data");
    putU32(out, dataSize);
    return out;
}

QByteArray WavFile::toBytes(const PcmSound& sound) {
    const auto dataSize = static_cast<quint32>(sound.data().size());
    QByteArray out = header(sound.format(), dataSize);
    out.append(sound.data());
    if (dataSize & 1)
        out.append('\0');
    return out;
}

bool WavFile::write(const QString& path, const PcmSound& sound) {
    AtomicFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    const QByteArray bytes = toBytes(sound);
    return file.write(bytes) == bytes.size() && file.commit();
}

QString WavFile::errorText(Error error) {
    switch (error) {
    case Error::None:
        return {};
    case Error::Unreadable:
        return QStringLiteral("the file cannot be read");
    case Error::NotWave:
        return QStringLiteral("the file is not a WAVE file");
    case Error::Compressed:
        return QStringLiteral("the WAVE file is compressed; only uncompressed PCM is supported");
    case Error::Unsupported:
        return QStringLiteral("only 8- and 16-bit PCM with one or two channels is supported");
    case Error::NoData:
        return QStringLiteral("the WAVE file holds no sound data");
    }
    return {};
}
