#include "WavHeader.h"

#include "AppGlobals.h"

#include <QFile>
#include <QtEndian>
#include <algorithm>
#include <cstring>

namespace {
// A fmt chunk is some 16 to 40 bytes; more is read no further than this.
constexpr qint64 kLongestFmt = 1024;
constexpr qint64 kShortestFmt = 16;
constexpr qint64 kExtensibleFmt = 40;
// Where the samples per block of an ADPCM format sit in its fmt chunk.
constexpr qint64 kSamplesPerBlockAt = 18;
// The GUID tail every extensible sub-format shares; its first two bytes are
// the plain format tag.
constexpr unsigned char kSubFormatTail[14] = {0x00, 0x00, 0x00, 0x00, 0x10, 0x00, 0x80,
                                              0x00, 0x00, 0xAA, 0x00, 0x38, 0x9B, 0x71};

quint16 u16(const char* p) {
    return qFromLittleEndian<quint16>(p);
}
quint32 u32(const char* p) {
    return qFromLittleEndian<quint32>(p);
}

// Writers that stream leave the data size open, as 0 or as all ones.
bool openSize(quint32 declared) {
    return declared == 0 || declared == 0xFFFFFFFFu;
}
} // namespace

WavHeader::Error WavHeader::read(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Error::Unreadable;
    return read(file);
}

WavHeader::Error WavHeader::read(QIODevice& device) {
    if (!device.seek(0))
        return Error::Unreadable;
    const QByteArray riff = device.read(12);
    if (riff.size() < 12 || !riff.startsWith("RIFF") || riff.mid(8, 4) != "WAVE")
        return Error::NotWave;
    const qint64 end = device.size();
    bool haveFmt = false;
    qint64 pos = 12;
    while (pos + 8 <= end && device.seek(pos)) {
        const QByteArray head = device.read(8);
        if (head.size() < 8)
            break;
        const quint32 declared = u32(head.constData() + 4);
        const qint64 body = pos + 8;
        const QByteArray id = head.left(4);
        if (id == "fmt ") {
            if (const Error e = readFmt(device.read(std::min<qint64>(declared, kLongestFmt)));
                e != Error::None)
                return e;
            haveFmt = true;
        } else if (id == "fact" && declared >= 4) {
            const QByteArray count = device.read(4);
            if (count.size() == 4)
                m_factFrames = u32(count.constData());
        } else if (id == "data") {
            if (!haveFmt)
                return Error::NotWave;
            m_dataOffset = body;
            m_dataSize = openSize(declared) ? end - body : std::min<qint64>(declared, end - body);
            return Error::None;
        }
        // Chunks are padded to an even size.
        pos = body + qint64(declared) + (declared & 1);
    }
    return haveFmt ? Error::NoData : Error::NotWave;
}

WavHeader::Error WavHeader::readFmt(const QByteArray& body) {
    if (body.size() < kShortestFmt)
        return Error::NotWave;
    const char* p = body.constData();
    m_fmt = body;
    m_tag = u16(p);
    m_channels = u16(p + 2);
    m_sampleRate = int(std::min<quint32>(u32(p + 4), 0x7FFFFFFF));
    m_bytesPerSecond = u32(p + 8);
    m_blockAlign = u16(p + 12);
    m_bitsPerSample = u16(p + 14);
    if (m_tag == Extensible && body.size() >= kExtensibleFmt) {
        const char* guid = p + 24;
        if (std::memcmp(guid + 2, kSubFormatTail, sizeof kSubFormatTail) == 0)
            m_tag = u16(guid);
    }
    if (m_channels == 0 || m_sampleRate == 0 || m_blockAlign == 0)
        return Error::Unsupported;
    return Error::None;
}

bool WavHeader::isPlainPcm() const {
    return m_tag == Pcm && (m_bitsPerSample == 8 || m_bitsPerSample == 16) &&
           (m_channels == 1 || m_channels == 2) && m_sampleRate <= 384000 &&
           m_blockAlign == frameBytes();
}

bool WavHeader::hasWholeFrames() const {
    const bool sampled = m_tag == Pcm || m_tag == Float || m_tag == ALaw || m_tag == MuLaw;
    return sampled && m_bitsPerSample > 0 && m_bitsPerSample % 8 == 0 &&
           m_blockAlign == frameBytes();
}

// What a frame of samples takes, counted wide: a header may claim 65535
// channels of 65535 bits.
qint64 WavHeader::frameBytes() const {
    return qint64(m_channels) * m_bitsPerSample / 8;
}

std::int64_t WavHeader::frames() const {
    if (hasWholeFrames())
        return m_dataSize / m_blockAlign;
    // A compressed coding says its length in a fact chunk; without one, its
    // blocks each hold the number of frames its fmt chunk names.
    if (m_factFrames)
        return *m_factFrames;
    if (m_fmt.size() >= kSamplesPerBlockAt + 2) {
        const quint16 perBlock = u16(m_fmt.constData() + kSamplesPerBlockAt);
        if (perBlock > 0)
            return m_dataSize / m_blockAlign * perBlock;
    }
    return m_bytesPerSecond > 0
               ? std::int64_t(__int128(m_dataSize) * m_sampleRate / m_bytesPerSecond)
               : 0;
}

std::int64_t WavHeader::lengthMs() const {
    return PcmSound::frameToMs(frames(), m_sampleRate);
}

PcmFormat WavHeader::pcmFormat() const {
    return PcmFormat{m_sampleRate, m_channels, m_bitsPerSample};
}

QString WavHeader::codingName() const {
    switch (m_tag) {
    case Pcm:
        return QStringLiteral("%1-bit PCM").arg(m_bitsPerSample);
    case Float:
        return QStringLiteral("%1-bit float").arg(m_bitsPerSample);
    case ALaw:
        return QStringLiteral("A-law");
    case MuLaw:
        return QStringLiteral("mu-law");
    case MsAdpcm:
    case ImaAdpcm:
        return QStringLiteral("ADPCM");
    default:
        return QStringLiteral("format 0x%1").arg(m_tag, 4, 16, QLatin1Char('0'));
    }
}

QString WavHeader::errorText(Error error, const WavHeader* header) {
    const QString coding = header ? header->codingName() : QStringLiteral("?");
    const QString channels = header ? QString::number(header->channels()) : QStringLiteral("?");
    switch (error) {
    case Error::None:
        return {};
    case Error::Unreadable:
        return AppGlobals::text("STR_WAV_UNREADABLE", "the file cannot be read");
    case Error::NotWave:
        return AppGlobals::text("STR_WAV_NOT_WAVE", "the file is not a WAV file");
    case Error::Compressed:
        return AppGlobals::text("STR_WAV_COMPRESSED",
                                "the WAV file is compressed (%0); only uncompressed PCM can be "
                                "used here",
                                {coding});
    case Error::Unsupported:
        return AppGlobals::text("STR_WAV_LAYOUT",
                                "the WAV file holds %0 with %1 channels; only 8- and 16-bit PCM "
                                "with one or two channels can be used here",
                                {coding, channels});
    case Error::NoData:
        return AppGlobals::text("STR_WAV_NO_DATA", "the WAV file holds no sound data");
    }
    return {};
}
