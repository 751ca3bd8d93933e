#include "WaveformPeaks.h"

#include "PcmSound.h"

#include <algorithm>
#include <cstring>

namespace {
// One frame's samples mixed to a value between -1 and 1.
float mixedFrame(const char* frame, const PcmFormat& format) {
    float sum = 0;
    for (int channel = 0; channel < format.channels; ++channel) {
        if (format.bitsPerSample == 8) {
            sum += (float(quint8(frame[channel])) - 128.0f) / 128.0f;
        } else {
            qint16 sample = 0;
            std::memcpy(&sample, frame + 2 * channel, sizeof sample);
            sum += float(sample) / 32768.0f;
        }
    }
    return sum / float(format.channels);
}
} // namespace

WaveformPeaks::WaveformPeaks(const PcmSound& sound, int spans) {
    const std::int64_t frames = sound.frames();
    const PcmFormat& format = sound.format();
    if (frames <= 0 || spans <= 0 || !format.isValid())
        return;
    const int count = int(std::min<std::int64_t>(spans, frames));
    m_spans.resize(count);
    const char* data = sound.data().constData();
    const int step = format.bytesPerFrame();
    for (int span = 0; span < count; ++span) {
        const std::int64_t first = frames * span / count;
        const std::int64_t last = frames * (span + 1) / count;
        Span& peak = m_spans[span];
        peak.low = peak.high = mixedFrame(data + first * step, format);
        for (std::int64_t frame = first + 1; frame < last; ++frame) {
            const float value = mixedFrame(data + frame * step, format);
            peak.low = std::min(peak.low, value);
            peak.high = std::max(peak.high, value);
        }
    }
}

const WaveformPeaks::Span& WaveformPeaks::atFraction(double fraction) const {
    const int index = std::clamp(int(fraction * count()), 0, count() - 1);
    return m_spans[index];
}
