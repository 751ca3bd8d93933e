#include "FfmpegDecoder.h"

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/intreadwrite.h>
#include <libavutil/opt.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

#include <QImage>

#include <functional>
#include <memory>

namespace {
struct FormatCloser {
    void operator()(AVFormatContext* c) const { avformat_close_input(&c); }
};
struct CodecCloser {
    void operator()(AVCodecContext* c) const { avcodec_free_context(&c); }
};
struct PacketFree {
    void operator()(AVPacket* p) const { av_packet_free(&p); }
};
struct FrameFree {
    void operator()(AVFrame* f) const { av_frame_free(&f); }
};
struct SwrFree {
    void operator()(SwrContext* s) const { swr_free(&s); }
};
using FormatPtr = std::unique_ptr<AVFormatContext, FormatCloser>;

QString avError(int code) {
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return QString::fromUtf8(text);
}

FormatPtr openInput(const QString& path, QString& error) {
    // Library chatter would end up on the user's terminal; errors reach the caller instead.
    av_log_set_level(AV_LOG_QUIET);
    AVFormatContext* raw = nullptr;
    int rc = avformat_open_input(&raw, path.toUtf8().constData(), nullptr, nullptr);
    if (rc < 0) {
        error = avError(rc);
        return nullptr;
    }
    FormatPtr context(raw);
    rc = avformat_find_stream_info(context.get(), nullptr);
    if (rc < 0) {
        error = avError(rc);
        return nullptr;
    }
    return context;
}

// Turns decoded frames of any sample layout into interleaved 16-bit PCM.
class Resampler {
public:
    bool init(const AVCodecContext& codec, PcmFormat& format, QString& error) {
        format.sampleRate = codec.sample_rate;
        format.channels = codec.ch_layout.nb_channels >= 2 ? 2 : 1;
        format.bitsPerSample = 16;
        if (!format.isValid()) {
            error = QStringLiteral("unsupported sample rate or channel count");
            return false;
        }
        AVChannelLayout out;
        av_channel_layout_default(&out, format.channels);
        // A stream that only tells its channel count gets the usual layout for it.
        AVChannelLayout in;
        if (codec.ch_layout.order == AV_CHANNEL_ORDER_UNSPEC)
            av_channel_layout_default(&in, codec.ch_layout.nb_channels);
        else if (av_channel_layout_copy(&in, &codec.ch_layout) < 0)
            return false;
        SwrContext* raw = nullptr;
        const int rc = swr_alloc_set_opts2(&raw, &out, AV_SAMPLE_FMT_S16, format.sampleRate, &in,
                                           codec.sample_fmt, codec.sample_rate, 0, nullptr);
        av_channel_layout_uninit(&in);
        m_swr.reset(raw);
        if (rc < 0 || swr_init(raw) < 0) {
            error = QStringLiteral("cannot convert the decoded samples");
            return false;
        }
        m_channels = format.channels;
        return true;
    }

    bool append(const AVFrame& frame, QByteArray& out) {
        if (frame.nb_samples <= 0)
            return true;
        const int capacity = swr_get_out_samples(m_swr.get(), frame.nb_samples);
        if (capacity < 0)
            return false;
        const qsizetype start = out.size();
        out.resize(start + qsizetype(capacity) * m_channels * 2);
        auto* dest = reinterpret_cast<uint8_t*>(out.data() + start);
        const int written =
            swr_convert(m_swr.get(), &dest, capacity,
                        const_cast<const uint8_t**>(frame.extended_data), frame.nb_samples);
        out.resize(start + qsizetype(std::max(written, 0)) * m_channels * 2);
        return written >= 0;
    }

private:
    std::unique_ptr<SwrContext, SwrFree> m_swr;
    int m_channels = 1;
};

bool openDecoder(AVFormatContext& format, AVMediaType type, int& streamIndex,
                 std::unique_ptr<AVCodecContext, CodecCloser>& codec, QString& error) {
    const bool sound = type == AVMEDIA_TYPE_AUDIO;
    const AVCodec* decoder = nullptr;
    streamIndex = av_find_best_stream(&format, type, -1, -1, &decoder, 0);
    if (streamIndex < 0 || !decoder) {
        error = sound ? QStringLiteral("the file holds no sound")
                      : QStringLiteral("the file holds no pictures");
        return false;
    }
    codec.reset(avcodec_alloc_context3(decoder));
    if (!codec ||
        avcodec_parameters_to_context(codec.get(), format.streams[streamIndex]->codecpar) < 0 ||
        avcodec_open2(codec.get(), decoder, nullptr) < 0) {
        error = sound ? QStringLiteral("cannot open the sound decoder")
                      : QStringLiteral("cannot open the video decoder");
        return false;
    }
    return true;
}

// A decoded video frame as a picture of its own size.
bool toPicture(const AVFrame& frame, QImage& picture) {
    if (frame.width <= 0 || frame.height <= 0 || frame.width > FfmpegDecoder::kMaxFrameEdge ||
        frame.height > FfmpegDecoder::kMaxFrameEdge)
        return false;
    SwsContext* scaler =
        sws_getContext(frame.width, frame.height, AVPixelFormat(frame.format), frame.width,
                       frame.height, AV_PIX_FMT_RGB32, SWS_BILINEAR, nullptr, nullptr, nullptr);
    if (!scaler)
        return false;
    QImage out(frame.width, frame.height, QImage::Format_RGB32);
    uint8_t* planes[4] = {out.bits(), nullptr, nullptr, nullptr};
    int strides[4] = {int(out.bytesPerLine()), 0, 0, 0};
    const int rows =
        sws_scale(scaler, frame.data, frame.linesize, 0, frame.height, planes, strides);
    sws_freeContext(scaler);
    if (rows != frame.height)
        return false;
    picture = out;
    return true;
}

// A file's first audio stream, opened for decoding.
struct AudioInput {
    FormatPtr format;
    std::unique_ptr<AVCodecContext, CodecCloser> codec;
    int stream = -1;

    bool open(const QString& path, QString& error) {
        codec.reset();
        format = openInput(path, error);
        return format && openDecoder(*format, AVMEDIA_TYPE_AUDIO, stream, codec, error);
    }
};

// Feeds every packet of the stream to the decoder and hands each decoded
// frame on until onFrame says stop; false when it did.
bool decodeFrames(AVFormatContext& format, AVCodecContext& codec, int streamIndex,
                  const std::function<bool(const AVFrame&)>& onFrame) {
    std::unique_ptr<AVPacket, PacketFree> packet(av_packet_alloc());
    std::unique_ptr<AVFrame, FrameFree> frame(av_frame_alloc());
    for (bool draining = false; !draining;) {
        if (av_read_frame(&format, packet.get()) < 0) {
            draining = true;
            avcodec_send_packet(&codec, nullptr);
        } else {
            if (packet->stream_index == streamIndex)
                avcodec_send_packet(&codec, packet.get()); // a damaged packet is skipped
            av_packet_unref(packet.get());
        }
        while (avcodec_receive_frame(&codec, frame.get()) == 0) {
            const bool goOn = onFrame(*frame);
            av_frame_unref(frame.get());
            if (!goOn)
                return false;
        }
    }
    return true;
}

// The frames the stream's packets say they hold, less the encoder's delay
// and padding the demuxer marks on them: what decoding would give, read
// from the packet headers alone. -1 when a packet does not tell its length.
std::int64_t packetFrames(AVFormatContext& format, int streamIndex, int rate) {
    const AVRational timeBase = format.streams[streamIndex]->time_base;
    std::unique_ptr<AVPacket, PacketFree> packet(av_packet_alloc());
    std::int64_t duration = 0;
    std::int64_t skipped = 0;
    bool told = true;
    while (told && av_read_frame(&format, packet.get()) >= 0) {
        if (packet->stream_index == streamIndex) {
            told = packet->duration > 0;
            duration += packet->duration;
            size_t size = 0;
            const uint8_t* skip =
                av_packet_get_side_data(packet.get(), AV_PKT_DATA_SKIP_SAMPLES, &size);
            if (skip && size >= 8)
                skipped += std::int64_t(AV_RL32(skip)) + AV_RL32(skip + 4);
        }
        av_packet_unref(packet.get());
    }
    if (!told)
        return -1;
    return std::max<std::int64_t>(av_rescale_q(duration, timeBase, AVRational{1, rate}) - skipped,
                                  0);
}
} // namespace

bool FfmpegDecoder::decodeAudio(const QString& path, PcmSound& sound, QString& error,
                                std::int64_t maxMs) {
    AudioInput in;
    if (!in.open(path, error))
        return false;
    PcmFormat pcm;
    Resampler resampler;
    if (!resampler.init(*in.codec, pcm, error))
        return false;

    const qsizetype maxBytes = qsizetype(maxMs * pcm.sampleRate / 1000) * pcm.bytesPerFrame();
    QByteArray data;
    const bool converted =
        decodeFrames(*in.format, *in.codec, in.stream, [&](const AVFrame& frame) {
            return resampler.append(frame, data) ? data.size() < maxBytes : false;
        });
    if (!converted && data.size() < maxBytes) {
        error = QStringLiteral("cannot convert the decoded samples");
        return false;
    }
    if (data.isEmpty()) {
        error = QStringLiteral("no sound could be decoded");
        return false;
    }
    data.truncate(std::min(data.size(), maxBytes));
    sound = PcmSound(pcm, std::move(data));
    return true;
}

bool FfmpegDecoder::audioLengthMs(const QString& path, std::int64_t& lengthMs, QString& error) {
    AudioInput in;
    if (!in.open(path, error))
        return false;
    const int rate = in.codec->sample_rate;
    if (rate <= 0) {
        error = QStringLiteral("unsupported sample rate or channel count");
        return false;
    }
    std::int64_t frames = packetFrames(*in.format, in.stream, rate);
    // Packets that do not tell their length are counted the slow way: decoded, not kept.
    if (frames < 0) {
        if (!in.open(path, error))
            return false;
        frames = 0;
        decodeFrames(*in.format, *in.codec, in.stream, [&](const AVFrame& frame) {
            frames += frame.nb_samples;
            return true;
        });
    }
    if (frames <= 0) {
        error = QStringLiteral("no sound could be decoded");
        return false;
    }
    lengthMs = (frames * 1000 + rate / 2) / rate;
    return true;
}

bool FfmpegDecoder::probe(const QString& path, MediaInfo& info, QString& error) {
    FormatPtr format = openInput(path, error);
    if (!format)
        return false;
    info = MediaInfo{};
    for (unsigned i = 0; i < format->nb_streams; ++i) {
        const AVMediaType type = format->streams[i]->codecpar->codec_type;
        info.hasAudio |= type == AVMEDIA_TYPE_AUDIO;
        info.hasVideo |= type == AVMEDIA_TYPE_VIDEO;
    }
    if (format->duration != AV_NOPTS_VALUE && format->duration >= 0)
        info.lengthMs = format->duration / (AV_TIME_BASE / 1000);
    if (!info.hasAudio && !info.hasVideo) {
        error = QStringLiteral("the file holds neither sound nor pictures");
        return false;
    }
    return true;
}

bool FfmpegDecoder::firstVideoFrame(const QString& path, QImage& picture, QString& error) {
    FormatPtr format = openInput(path, error);
    if (!format)
        return false;
    int streamIndex = -1;
    std::unique_ptr<AVCodecContext, CodecCloser> codec;
    if (!openDecoder(*format, AVMEDIA_TYPE_VIDEO, streamIndex, codec, error))
        return false;
    std::unique_ptr<AVPacket, PacketFree> packet(av_packet_alloc());
    std::unique_ptr<AVFrame, FrameFree> frame(av_frame_alloc());
    // A file whose first picture never completes is given up on, not read to its end.
    for (int packets = 0; packets < kMaxPacketsForAFrame; ++packets) {
        const bool ended = av_read_frame(format.get(), packet.get()) < 0;
        if (ended)
            avcodec_send_packet(codec.get(), nullptr);
        else if (packet->stream_index == streamIndex)
            avcodec_send_packet(codec.get(), packet.get());
        av_packet_unref(packet.get());
        if (avcodec_receive_frame(codec.get(), frame.get()) == 0) {
            if (toPicture(*frame, picture))
                return true;
            error = QStringLiteral("the video's pictures cannot be converted");
            return false;
        }
        if (ended)
            break;
    }
    error = QStringLiteral("no picture could be decoded");
    return false;
}
