#include "PcmResampler.h"

extern "C" {
#include <libavutil/channel_layout.h>
#include <libswresample/swresample.h>
}

#include <memory>

namespace {
struct SwrFree {
    void operator()(SwrContext* context) const { swr_free(&context); }
};

std::unique_ptr<SwrContext, SwrFree> converter(int channels, int fromRate, int toRate) {
    AVChannelLayout in;
    AVChannelLayout out;
    av_channel_layout_default(&in, channels);
    av_channel_layout_default(&out, 1);
    SwrContext* raw = nullptr;
    const int rc = swr_alloc_set_opts2(&raw, &out, AV_SAMPLE_FMT_S16, toRate, &in,
                                       AV_SAMPLE_FMT_S16, fromRate, 0, nullptr);
    std::unique_ptr<SwrContext, SwrFree> context(raw);
    if (rc < 0 || swr_init(raw) < 0)
        context.reset();
    return context;
}
} // namespace

bool PcmResampler::toMono(const PcmSound& source, int sampleRate, PcmSound& result,
                          QString& error) {
    const PcmSound input = source.toInt16();
    const PcmFormat& from = input.format();
    const auto context =
        sampleRate > 0 ? converter(from.channels, from.sampleRate, sampleRate) : nullptr;
    if (!context) {
        error = QStringLiteral("the sound cannot be converted to %1 Hz").arg(sampleRate);
        return false;
    }
    const int frames = int(input.frames());
    // Room for the converted frames and what the filter still holds at the end.
    const int capacity = swr_get_out_samples(context.get(), frames) + 64;
    QByteArray data(qsizetype(capacity) * 2, '\0');
    auto* out = reinterpret_cast<uint8_t*>(data.data());
    const auto* in = reinterpret_cast<const uint8_t*>(input.data().constData());
    const int converted = swr_convert(context.get(), &out, capacity, &in, frames);
    uint8_t* rest = out + qsizetype(std::max(converted, 0)) * 2;
    const int flushed =
        converted < 0 ? -1 : swr_convert(context.get(), &rest, capacity - converted, nullptr, 0);
    if (converted < 0 || flushed < 0) {
        error = QStringLiteral("the sound cannot be converted to %1 Hz").arg(sampleRate);
        return false;
    }
    data.resize(qsizetype(converted + flushed) * 2);
    result = PcmSound(PcmFormat{sampleRate, 1, 16}, data);
    return true;
}
