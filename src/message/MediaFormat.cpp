#include "MediaFormat.h"

#include "MidiFile.h"
#include "WavFile.h"

#include <QFileInfo>
#include <QStringDecoder>
#include <algorithm>
#include <array>
#include <map>

namespace {
using Kind = MediaFormat::Kind;
using Facts = MediaFormat::Facts;

Facts only(Kind kind) {
    Facts facts;
    facts.kind = kind;
    return facts;
}

int byteAt(const QByteArray& bytes, qsizetype at) {
    return at < bytes.size() ? quint8(bytes[at]) : -1;
}

int bigEndian16(const QByteArray& bytes, qsizetype at) {
    return (byteAt(bytes, at) << 8) | byteAt(bytes, at + 1);
}

int littleEndian16(const QByteArray& bytes, qsizetype at) {
    return byteAt(bytes, at) | (byteAt(bytes, at + 1) << 8);
}

qint64 bigEndian32(const QByteArray& bytes, qsizetype at) {
    return (qint64(bigEndian16(bytes, at)) << 16) | bigEndian16(bytes, at + 2);
}

Kind jpegKind(int sofMarker) {
    switch (sofMarker) {
    case 0xC0:
        return MediaFormat::JpegBaseline;
    case 0xC1:
        return MediaFormat::JpegExtended;
    case 0xC2:
        return MediaFormat::JpegProgressive;
    default:
        return MediaFormat::JpegOther;
    }
}

bool isFrameMarker(int marker) {
    return marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC;
}

// The start-of-frame segment says how the picture was coded and its size;
// the file must reach its end-of-image marker to be whole.
Facts jpeg(const QByteArray& bytes) {
    Facts facts{MediaFormat::JpegOther, {}, -1, true};
    qsizetype at = 2;
    while (at + 4 <= bytes.size() && byteAt(bytes, at) == 0xFF) {
        const int marker = byteAt(bytes, at + 1);
        if (marker == 0xFF || marker == 0x01 || (marker >= 0xD0 && marker <= 0xD7)) {
            at += marker == 0xFF ? 1 : 2;
            continue;
        }
        if (marker == 0xDA || marker == 0xD9)
            break;
        if (isFrameMarker(marker)) {
            facts.kind = jpegKind(marker);
            facts.resolution = QSize(bigEndian16(bytes, at + 7), bigEndian16(bytes, at + 5));
            facts.truncated = at + 9 > bytes.size() || !bytes.endsWith("\xFF\xD9");
            return facts;
        }
        at += 2 + bigEndian16(bytes, at + 2);
    }
    return facts;
}

Facts gif(const QByteArray& bytes) {
    const Kind kind = bytes.startsWith("GIF87a") ? MediaFormat::Gif87a : MediaFormat::Gif89a;
    return {kind, QSize(littleEndian16(bytes, 6), littleEndian16(bytes, 8)), -1,
            bytes.size() < 14 || !bytes.endsWith(';')};
}

Facts png(const QByteArray& bytes) {
    const bool whole = bytes.size() >= 57 && bytes.mid(bytes.size() - 8, 4) == "IEND";
    return {MediaFormat::Png, QSize(int(bigEndian32(bytes, 16)), int(bigEndian32(bytes, 20))), -1,
            !whole};
}

Facts bmp(const QByteArray& bytes) {
    const int width = littleEndian16(bytes, 18) | (littleEndian16(bytes, 20) << 16);
    const int height = littleEndian16(bytes, 22) | (littleEndian16(bytes, 24) << 16);
    const qint64 declared = littleEndian16(bytes, 2) | (qint64(littleEndian16(bytes, 4)) << 16);
    return {MediaFormat::Bmp, QSize(width, height < 0 ? -height : height), -1,
            bytes.size() < 26 || bytes.size() < declared};
}

// AMR storage: after the magic line, frames of 20 ms whose first byte names
// the frame type and so its length.
Facts amr(const QByteArray& bytes, bool wideband) {
    static constexpr std::array<int, 16> narrow{13, 14, 16, 18, 20, 21, 27, 32,
                                                6,  1,  1,  1,  1,  1,  1,  1};
    static constexpr std::array<int, 16> wide{18, 24, 33, 37, 41, 47, 51, 59,
                                              61, 6,  1,  1,  1,  1,  1,  1};
    const auto& sizes = wideband ? wide : narrow;
    qsizetype at = wideband ? 9 : 6;
    qint64 frames = 0;
    while (at < bytes.size()) {
        at += sizes[(byteAt(bytes, at) >> 3) & 0x0F];
        ++frames;
    }
    const bool whole = at == bytes.size();
    return {wideband ? MediaFormat::AmrWb : MediaFormat::AmrNb, {}, (frames - !whole) * 20, !whole};
}

qsizetype variableLength(const QByteArray& bytes, qsizetype& at) {
    qsizetype value = 0;
    for (int i = 0; i < 4 && at < bytes.size(); ++i) {
        const int byte = byteAt(bytes, at++);
        value = (value << 7) | (byte & 0x7F);
        if (!(byte & 0x80))
            break;
    }
    return value;
}

// Scalable polyphony is announced by a universal real-time system exclusive
// message (7F, any device, sub-IDs 0B 01) before the notes.
bool hasPolyphonyMessage(const QByteArray& bytes) {
    for (qsizetype at = bytes.indexOf('\xF0'); at >= 0; at = bytes.indexOf('\xF0', at + 1)) {
        qsizetype data = at + 1;
        variableLength(bytes, data);
        if (byteAt(bytes, data) == 0x7F && byteAt(bytes, data + 2) == 0x0B &&
            byteAt(bytes, data + 3) == 0x01)
            return true;
    }
    return false;
}

Facts midi(const QByteArray& bytes) {
    MidiFile::Info info;
    const MidiFile::Error error = MidiFile::parse(bytes, info);
    const bool readable = error == MidiFile::Error::None;
    return {hasPolyphonyMessage(bytes) ? MediaFormat::SpMidi : MediaFormat::Midi,
            {},
            readable ? info.lengthMs : -1,
            !readable};
}

Facts wav(const QByteArray& bytes) {
    PcmSound sound;
    const WavFile::Error error = WavFile::parse(bytes, sound);
    const bool readable = error == WavFile::Error::None;
    const qint64 declared =
        qint64(littleEndian16(bytes, 4)) | (qint64(littleEndian16(bytes, 6)) << 16);
    return {MediaFormat::Wav,
            {},
            readable ? sound.lengthMs() : -1,
            !readable || bytes.size() < declared + 8};
}

// An MPEG audio frame header: its length in bytes and samples, 0 when the
// four bytes at are no Layer III header.
struct Mp3Frame {
    int bytes = 0;
    int samples = 0;
    int rate = 0;
};

Mp3Frame mp3Frame(const QByteArray& data, qsizetype at) {
    static constexpr std::array<int, 16> rates1{0,   32,  40,  48,  56,  64,  80,  96,
                                                112, 128, 160, 192, 224, 256, 320, 0};
    static constexpr std::array<int, 16> rates2{0,  8,  16, 24,  32,  40,  48,  56,
                                                64, 80, 96, 112, 128, 144, 160, 0};
    static constexpr std::array<int, 4> sampleRates{44100, 48000, 32000, 0};
    const int b1 = byteAt(data, at + 1);
    const int b2 = byteAt(data, at + 2);
    if (byteAt(data, at) != 0xFF || b2 < 0 || (b1 & 0xE0) != 0xE0 || (b1 & 0x06) != 0x02)
        return {};
    const int version = (b1 >> 3) & 0x03; // 3: MPEG 1, 2: MPEG 2, 0: MPEG 2.5
    const int rateIndex = (b2 >> 2) & 0x03;
    const int bitrate = (version == 3 ? rates1 : rates2)[(b2 >> 4) & 0x0F];
    if (version == 1 || bitrate == 0 || sampleRates[rateIndex] == 0)
        return {};
    const int rate = sampleRates[rateIndex] >> (version == 3 ? 0 : version == 2 ? 1 : 2);
    const int samples = version == 3 ? 1152 : 576;
    return {samples / 8 * bitrate * 1000 / rate + ((b2 >> 1) & 1), samples, rate};
}

qsizetype id3Length(const QByteArray& bytes) {
    if (!bytes.startsWith("ID3"))
        return 0;
    qsizetype size = 0;
    for (int i = 6; i < 10; ++i)
        size = (size << 7) | (byteAt(bytes, i) & 0x7F);
    return 10 + size + ((byteAt(bytes, 5) & 0x10) ? 10 : 0);
}

// Encoders put their summary ("Xing" or "Info") in a first frame of silence
// that no player plays.
bool isSummaryFrame(const QByteArray& bytes, qsizetype at, const Mp3Frame& frame) {
    const QByteArray head = bytes.mid(at, qMin(frame.bytes, 64));
    return head.contains("Xing") || head.contains("Info");
}

Facts mp3(const QByteArray& bytes, qsizetype start) {
    qint64 samples = 0;
    int rate = 0;
    qsizetype at = start;
    for (Mp3Frame frame = mp3Frame(bytes, at); frame.bytes > 0; frame = mp3Frame(bytes, at)) {
        if (at > start || !isSummaryFrame(bytes, at, frame))
            samples += frame.samples;
        rate = frame.rate;
        at += frame.bytes;
    }
    // A closing tag of the old kind may follow the last frame.
    const qsizetype end = bytes.mid(at, 3) == "TAG" ? at + 128 : at;
    return {MediaFormat::Mp3, {}, rate > 0 ? samples * 1000 / rate : -1, end > bytes.size()};
}

// Type 0 is the only wireless bitmap there is: a zero type and header byte,
// then width and height as multi-byte integers, then the rows, a bit a pixel.
Facts wbmp(const QByteArray& bytes) {
    qsizetype at = 2;
    const qsizetype width = variableLength(bytes, at);
    const qsizetype height = variableLength(bytes, at);
    const qint64 expected = at + (width + 7) / 8 * qint64(height);
    if (width <= 0 || height <= 0 || width > 0xFFFF || height > 0xFFFF || bytes.size() > expected)
        return only(MediaFormat::Unknown);
    return {MediaFormat::Wbmp, QSize(int(width), int(height)), -1, bytes.size() < expected};
}

Kind textKind(const QByteArray& bytes) {
    if (bytes.startsWith("\xFF\xFE") || bytes.startsWith("\xFE\xFF"))
        return MediaFormat::TextUtf16;
    if (bytes.contains('\0'))
        return MediaFormat::Unknown;
    const QByteArray head = bytes.left(512).trimmed();
    if (head.startsWith("<smil") || (head.startsWith("<?xml") && head.contains("<smil")))
        return MediaFormat::Smil;
    auto decoder = QStringDecoder(QStringDecoder::Utf8);
    const QString decoded = decoder(bytes);
    if (decoder.hasError())
        return MediaFormat::TextEightBit;
    const bool ascii = std::all_of(bytes.begin(), bytes.end(), [](char c) { return c >= 0; });
    return ascii ? MediaFormat::TextAscii : MediaFormat::TextUtf8;
}

Facts byContent(const QByteArray& bytes) {
    if (bytes.size() >= 4 && bytes.mid(4, 4) == "ftyp")
        return only(bytes.mid(8, 3) == "3gp" || bytes.mid(8, 3) == "3g2" ? MediaFormat::Video3gpp
                                                                         : MediaFormat::VideoMp4);
    const qsizetype tag = id3Length(bytes);
    if (tag > 0 || mp3Frame(bytes, 0).bytes > 0)
        return mp3(bytes, tag);
    if (bytes.startsWith(QByteArray(2, '\0')))
        return wbmp(bytes);
    return only(textKind(bytes));
}
} // namespace

MediaFormat::Facts MediaFormat::identify(const QByteArray& bytes) {
    if (bytes.isEmpty())
        return only(Empty);
    if (bytes.startsWith("\xFF\xD8\xFF"))
        return jpeg(bytes);
    if (bytes.startsWith("GIF87a") || bytes.startsWith("GIF89a"))
        return gif(bytes);
    if (bytes.startsWith("\x89PNG\r\n\x1A\n"))
        return png(bytes);
    if (bytes.startsWith("BM") && bytes.size() >= 26 && byteAt(bytes, 14) >= 12)
        return bmp(bytes);
    if (bytes.startsWith("#!AMR\n") || bytes.startsWith("#!AMR-WB\n"))
        return amr(bytes, bytes.startsWith("#!AMR-WB\n"));
    if (bytes.startsWith("MThd"))
        return midi(bytes);
    if (bytes.startsWith("RIFF") && bytes.mid(8, 4) == "WAVE")
        return wav(bytes);
    return byContent(bytes);
}

namespace {
// Extensions and the kinds they promise; the first of a kind is the one it is written with.
constexpr std::array<std::pair<const char*, Kind>, 16> kExtensions{{
    {"jpg", MediaFormat::JpegBaseline},
    {"jpeg", MediaFormat::JpegBaseline},
    {"gif", MediaFormat::Gif89a},
    {"png", MediaFormat::Png},
    {"wbmp", MediaFormat::Wbmp},
    {"bmp", MediaFormat::Bmp},
    {"amr", MediaFormat::AmrNb},
    {"awb", MediaFormat::AmrWb},
    {"mid", MediaFormat::Midi},
    {"midi", MediaFormat::Midi},
    {"mp3", MediaFormat::Mp3},
    {"wav", MediaFormat::Wav},
    {"txt", MediaFormat::TextUtf8},
    {"smil", MediaFormat::Smil},
    {"3gp", MediaFormat::Video3gpp},
    {"mp4", MediaFormat::VideoMp4},
}};
} // namespace

QString MediaFormat::kindName(Kind kind) {
    static const std::map<Kind, const char*> names{
        {Empty, "an empty file"},
        {Unknown, "unknown data"},
        {TextAscii, "ASCII text"},
        {TextUtf8, "UTF-8 text"},
        {TextUtf16, "UTF-16 text"},
        {TextEightBit, "8-bit text"},
        {Smil, "SMIL"},
        {JpegBaseline, "baseline JPEG"},
        {JpegExtended, "extended JPEG"},
        {JpegProgressive, "progressive JPEG"},
        {JpegOther, "lossless or arithmetic JPEG"},
        {Gif87a, "GIF87a"},
        {Gif89a, "GIF89a"},
        {Png, "PNG"},
        {Wbmp, "WBMP"},
        {Bmp, "BMP"},
        {AmrNb, "AMR-NB"},
        {AmrWb, "AMR-WB"},
        {SpMidi, "SP-MIDI"},
        {Midi, "MIDI without scalable polyphony"},
        {Mp3, "MP3"},
        {Wav, "WAV"},
        {Video3gpp, "3GPP video"},
        {VideoMp4, "MP4 video"},
    };
    return QString::fromLatin1(names.at(kind));
}

MediaFormat::Kind MediaFormat::promisedBy(const QString& fileName) {
    const QString extension = QFileInfo(fileName).suffix().toLower();
    for (const auto& [known, kind] : kExtensions)
        if (extension == QLatin1String(known))
            return kind;
    return Unknown;
}

namespace {
// Kinds a receiver handles alike once it is told the type: all JPEGs, all
// GIFs, all texts, both MIDIs.
Kind family(Kind kind) {
    switch (kind) {
    case MediaFormat::JpegExtended:
    case MediaFormat::JpegProgressive:
    case MediaFormat::JpegOther:
        return MediaFormat::JpegBaseline;
    case MediaFormat::Gif87a:
        return MediaFormat::Gif89a;
    case MediaFormat::TextAscii:
    case MediaFormat::TextUtf16:
    case MediaFormat::TextEightBit:
        return MediaFormat::TextUtf8;
    case MediaFormat::SpMidi:
        return MediaFormat::Midi;
    default:
        return kind;
    }
}
} // namespace

QString MediaFormat::extensionFor(Kind kind) {
    for (const auto& [extension, promised] : kExtensions)
        if (family(promised) == family(kind))
            return u'.' + QLatin1String(extension);
    return QString();
}

bool MediaFormat::matchesName(Kind kind, const QString& fileName) {
    const Kind promised = promisedBy(fileName);
    return promised == Unknown || family(promised) == family(kind);
}
