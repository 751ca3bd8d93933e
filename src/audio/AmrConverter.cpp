#include "AmrConverter.h"

#include "WavFile.h"

#include "AppGlobals.h"

#include "AtomicFile.h"
#include <QFile>
#include <array>
#include <map>
#include <memory>
#include <opencore-amrnb/interf_dec.h>
#include <opencore-amrnb/interf_enc.h>

namespace {
const QByteArray kMagic("#!AMR\n");
const QByteArray kWidebandMagic("#!AMR-WB\n");
// Payload bytes after the one-byte frame header, by frame type; reserved types
// are -1. Type 15 means "no data" and carries nothing.
constexpr std::array<int, 16> kPayloadBytes{12, 13, 15, 17, 19, 20, 26, 31,
                                            5,  -1, -1, -1, -1, -1, -1, 0};
constexpr int kMaxFrameBytes = 32;
// What the size fields of a WAV file can count: some 74 hours at 8000 Hz.
constexpr qint64 kMaxWavDataBytes = qint64(0xFFFFFFFF) - 36;

struct EncoderFree {
    void operator()(void* s) const { Encoder_Interface_exit(s); }
};
struct DecoderFree {
    void operator()(void* s) const { Decoder_Interface_exit(s); }
};

bool writeBlock(QIODevice& out, const QByteArray& bytes) {
    return out.write(bytes) == bytes.size();
}

bool writeAll(const QString& path, const QByteArray& bytes) {
    AtomicFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit();
}
} // namespace

int AmrConverter::wav2amr(const QString& source, const QString& target) {
    PcmSound sound;
    const WavFile::Error error = WavFile::read(source, sound);
    if (error == WavFile::Error::Unreadable)
        return SourceUnreadable;
    if (error == WavFile::Error::Compressed)
        return CompressedSource;
    if (error != WavFile::Error::None)
        return CorruptSource;
    if (sound.format() != PcmFormat{kSampleRate, 1, 16})
        return WrongFormat;

    std::unique_ptr<void, EncoderFree> encoder(Encoder_Interface_init(0));
    if (!encoder)
        return CodecFailed;
    const auto* samples = reinterpret_cast<const short*>(sound.data().constData());
    const std::int64_t total = sound.frames();
    QByteArray out = kMagic;
    std::array<short, kFrameSamples> block{};
    std::array<unsigned char, kMaxFrameBytes + 1> frame{};
    for (std::int64_t at = 0; at < total; at += kFrameSamples) {
        // The last block is filled up with silence.
        block.fill(0);
        std::copy_n(samples + at, std::min<std::int64_t>(kFrameSamples, total - at), block.begin());
        const int bytes =
            Encoder_Interface_Encode(encoder.get(), MR122, block.data(), frame.data(), 0);
        if (bytes <= 0 || bytes > kMaxFrameBytes)
            return CodecFailed;
        out.append(reinterpret_cast<const char*>(frame.data()), bytes);
    }
    return writeAll(target, out) ? Ok : TargetUnwritable;
}

// Decoded straight into the WAV file, whatever the length: a few bytes of AMR
// become 320 bytes of sound each, which memory must not have to hold.
int AmrConverter::amr2wav(const QString& source, const QString& target) {
    QFile file(source);
    if (!file.open(QIODevice::ReadOnly))
        return SourceUnreadable;
    const QByteArray bytes = file.readAll();
    if (bytes.startsWith(kWidebandMagic))
        return WidebandSource;
    if (!bytes.startsWith(kMagic))
        return CorruptSource;

    std::unique_ptr<void, DecoderFree> decoder(Decoder_Interface_init());
    if (!decoder)
        return CodecFailed;
    const PcmFormat format{kSampleRate, 1, 16};
    AtomicFile out(target);
    if (!out.open(QIODevice::WriteOnly) || !writeBlock(out, WavFile::header(format, 0)))
        return TargetUnwritable;
    qint64 pcmBytes = 0;
    std::array<unsigned char, kMaxFrameBytes> frame{};
    std::array<short, kFrameSamples> block{};
    for (qsizetype pos = kMagic.size(); pos < bytes.size();) {
        const int payload = kPayloadBytes[(static_cast<unsigned char>(bytes[pos]) >> 3) & 0x0F];
        if (payload < 0)
            return CorruptSource;
        if (pos + 1 + payload > bytes.size())
            break; // a frame cut off at the end of the file is dropped
        if (pcmBytes + qint64(sizeof block) > kMaxWavDataBytes)
            return TooLong;
        frame.fill(0);
        std::copy_n(bytes.constData() + pos, 1 + payload, frame.begin());
        Decoder_Interface_Decode(decoder.get(), frame.data(), block.data(), 0);
        if (!writeBlock(out, QByteArray(reinterpret_cast<const char*>(block.data()), sizeof block)))
            return TargetUnwritable;
        pcmBytes += qint64(sizeof block);
        pos += 1 + payload;
    }
    // Bytes after the mark that make no whole frame are no sound; none at all is an empty one.
    if (pcmBytes == 0 && bytes.size() > kMagic.size())
        return CorruptSource;
    return out.seek(0) && writeBlock(out, WavFile::header(format, quint32(pcmBytes))) &&
                   out.commit()
               ? Ok
               : TargetUnwritable;
}

QString AmrConverter::errorText(int result, const QString& target) {
    static const std::map<int, std::pair<const char*, const char*>> texts{
        {SourceUnreadable, {"STR_AMR_UNREADABLE", "the source file cannot be read"}},
        {WrongFormat,
         {"STR_AMR_WRONG_FORMAT", "only 8000 Hz 16-bit mono sounds can be converted to AMR"}},
        {TargetUnwritable, {"STR_AMR_TARGET", "%0 cannot be written"}},
        {CorruptSource, {"STR_AMR_CORRUPT", "the source file is damaged or of the wrong kind"}},
        {CodecFailed, {"STR_AMR_CODEC", "the AMR codec failed"}},
        {TooLong, {"STR_WAV_TOO_LONG", "the sound is longer than a WAV file can hold"}},
        {WidebandSource,
         {"STR_AMR_WIDEBAND", "the file is AMR-WB (wideband), which is not supported; only "
                              "AMR-NB sounds can be converted"}},
        {CompressedSource,
         {"STR_AMR_COMPRESSED_WAV",
          "the WAV file is compressed; only uncompressed PCM can be converted to AMR"}},
    };
    if (result == Ok)
        return {};
    const auto it = texts.find(result);
    if (it == texts.end())
        return QStringLiteral("unknown conversion error %1").arg(result);
    return AppGlobals::text(it->second.first, it->second.second, {target});
}
