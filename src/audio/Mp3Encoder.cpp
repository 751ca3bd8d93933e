#include "Mp3Encoder.h"

#include "WavFile.h"

#include "AtomicFile.h"
#include <cstring>
#include <lame/lame.h>
#include <memory>

namespace {
struct LameClose {
    void operator()(lame_global_flags* gf) const { lame_close(gf); }
};

// lame's tables: version 0 is MPEG-2, 1 MPEG-1, 2 MPEG-2.5; each has three
// sample rates and bit-rate indexes 1 to 14 (0 is free format).
int mpegVersionOf(int sampleRate) {
    for (int version = 0; version < 3; ++version)
        for (int i = 0; i < 3; ++i)
            if (lame_get_samplerate(version, i) == sampleRate)
                return version;
    return -1;
}

bool configure(lame_global_flags* gf, const PcmFormat& format, int kbps) {
    lame_set_in_samplerate(gf, format.sampleRate);
    lame_set_out_samplerate(gf, format.sampleRate);
    lame_set_num_channels(gf, format.channels);
    lame_set_mode(gf, format.channels == 2 ? JOINT_STEREO : MONO);
    lame_set_brate(gf, kbps);
    lame_set_VBR(gf, vbr_off);
    lame_set_write_id3tag_automatic(gf, 0);
    // The Info frame carries the encoder delay and padding, so decoders give
    // back exactly the recorded samples. lame leaves it out when a frame is too
    // small to hold it (32 kbit/s and less at the lower sample rates).
    lame_set_bWriteVbrTag(gf, 1);
    return lame_init_params(gf) >= 0;
}
} // namespace

QList<int> Mp3Encoder::bitratesKbps(int sampleRate) {
    QList<int> rates;
    const int version = mpegVersionOf(sampleRate);
    if (version < 0)
        return rates;
    for (int i = 1; i < 15; ++i)
        if (const int kbps = lame_get_bitrate(version, i); kbps > 0)
            rates.append(kbps);
    return rates;
}

bool Mp3Encoder::encode(const PcmSound& sound, int kbps, QByteArray& mp3, QString& error) {
    if (!bitratesKbps(sound.format().sampleRate).contains(kbps)) {
        error = QStringLiteral("MP3 has no %1 kbit/s at %2 Hz")
                    .arg(kbps)
                    .arg(sound.format().sampleRate);
        return false;
    }
    const PcmSound pcm = sound.toInt16();
    std::unique_ptr<lame_global_flags, LameClose> gf(lame_init());
    if (!gf || !configure(gf.get(), pcm.format(), kbps)) {
        error = QStringLiteral("the MP3 encoder rejects this format");
        return false;
    }
    auto* samples = const_cast<short*>(reinterpret_cast<const short*>(pcm.data().constData()));
    constexpr int kChunk = 8192;
    QByteArray out;
    QByteArray buffer(int(1.25 * kChunk) + 7200, '\0');
    auto* dest = reinterpret_cast<unsigned char*>(buffer.data());
    const int channels = pcm.format().channels;
    for (std::int64_t at = 0; at < pcm.frames(); at += kChunk) {
        const int n = static_cast<int>(std::min<std::int64_t>(kChunk, pcm.frames() - at));
        short* in = samples + at * channels;
        const int written =
            channels == 2 ? lame_encode_buffer_interleaved(gf.get(), in, n, dest, buffer.size())
                          : lame_encode_buffer(gf.get(), in, in, n, dest, buffer.size());
        if (written < 0) {
            error = QStringLiteral("the MP3 encoder failed (%1)").arg(written);
            return false;
        }
        out.append(buffer.constData(), written);
    }
    const int flushed = lame_encode_flush(gf.get(), dest, buffer.size());
    if (flushed < 0) {
        error = QStringLiteral("the MP3 encoder failed (%1)").arg(flushed);
        return false;
    }
    out.append(buffer.constData(), flushed);
    const size_t tagSize = lame_get_lametag_frame(gf.get(), dest, buffer.size());
    if (tagSize > 0 && tagSize <= size_t(out.size()))
        std::memcpy(out.data(), buffer.constData(), tagSize);
    mp3 = out;
    return true;
}

bool Mp3Encoder::encodeFile(const QString& wavPath, const QString& mp3Path, int bytesPerSecond,
                            QString& error) {
    PcmSound sound;
    if (const auto wavError = WavFile::read(wavPath, sound); wavError != WavFile::Error::None) {
        error = WavFile::errorText(wavError);
        return false;
    }
    int kbps = 0;
    for (int rate : bitratesKbps(sound.format().sampleRate))
        if (rate * 1000 / 8 <= bytesPerSecond)
            kbps = rate;
    QByteArray mp3;
    if (kbps == 0) {
        error = QStringLiteral("no MP3 bit rate fits %1 bytes per second").arg(bytesPerSecond);
        return false;
    }
    if (!encode(sound, kbps, mp3, error))
        return false;
    AtomicFile file(mp3Path);
    if (!file.open(QIODevice::WriteOnly) || file.write(mp3) != mp3.size() || !file.commit()) {
        error = QStringLiteral("cannot write %1").arg(mp3Path);
        return false;
    }
    return true;
}
