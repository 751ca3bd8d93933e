#include "WavFile.h"

#include "AtomicFile.h"
#include <QBuffer>
#include <QFile>
#include <QtEndian>

namespace {
constexpr quint16 kFormatPcm = 1;

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
    QByteArray copy = bytes;
    QBuffer buffer(&copy);
    buffer.open(QIODevice::ReadOnly);
    return read(buffer, sound);
}

WavFile::Error WavFile::read(const QString& path, PcmSound& sound, WavHeader* header) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Error::Unreadable;
    return read(file, sound, header);
}

WavFile::Error WavFile::read(QIODevice& device, PcmSound& sound, WavHeader* told) {
    WavHeader own;
    WavHeader& header = told ? *told : own;
    if (const Error error = header.read(device); error != Error::None)
        return error;
    if (!header.isPlainPcm())
        return header.tag() == WavHeader::Pcm ? Error::Unsupported : Error::Compressed;
    if (!device.seek(header.dataOffset()))
        return Error::Unreadable;
    sound = PcmSound(header.pcmFormat(), device.read(header.dataSize()));
    return Error::None;
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

QByteArray WavFile::header(const WavHeader& layout, std::int64_t frames) {
    const auto dataSize = quint32(frames * layout.blockAlign());
    if (layout.isPlainPcm())
        return header(layout.pcmFormat(), dataSize);
    QByteArray fmt = layout.fmtBody();
    if (fmt.size() % 2)
        fmt.append('\0');
    QByteArray chunks = "fmt ";
    putU32(chunks, quint32(layout.fmtBody().size()));
    chunks += fmt;
    chunks += "fact";
    putU32(chunks, 4);
    putU32(chunks, quint32(frames));
    chunks += "data";
    putU32(chunks, dataSize);
    QByteArray out = "RIFF";
    putU32(out, quint32(4 + chunks.size() + dataSize + (dataSize & 1)));
    return out + "WAVE" + chunks;
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
