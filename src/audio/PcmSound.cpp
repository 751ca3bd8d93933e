#include "PcmSound.h"

#include <algorithm>

bool PcmFormat::isValid() const {
    return sampleRate > 0 && sampleRate <= 384000 && (channels == 1 || channels == 2) &&
           (bitsPerSample == 8 || bitsPerSample == 16);
}

PcmSound::PcmSound(PcmFormat format, QByteArray data) : m_format(format), m_data(std::move(data)) {
    // A partial frame at the end cannot be played; drop it so every position is whole.
    m_data.truncate(frames() * m_format.bytesPerFrame());
}

std::int64_t PcmSound::frames() const {
    const int frameBytes = m_format.bytesPerFrame();
    return frameBytes > 0 ? m_data.size() / frameBytes : 0;
}

std::int64_t PcmSound::msToFrame(std::int64_t ms, int sampleRate) {
    return (ms * sampleRate + 500) / 1000;
}

std::int64_t PcmSound::frameToMs(std::int64_t frame, int sampleRate) {
    if (sampleRate <= 0)
        return 0;
    const __int128 ms = (__int128(frame) * 1000 + sampleRate / 2) / sampleRate;
    return ms > INT64_MAX ? INT64_MAX : std::int64_t(ms);
}

PcmSound PcmSound::slice(std::int64_t fromFrame, std::int64_t toFrame) const {
    const std::int64_t total = frames();
    fromFrame = std::clamp<std::int64_t>(fromFrame, 0, total);
    toFrame = std::clamp<std::int64_t>(toFrame, fromFrame, total);
    const int frameBytes = m_format.bytesPerFrame();
    return PcmSound(m_format,
                    m_data.mid(fromFrame * frameBytes, (toFrame - fromFrame) * frameBytes));
}

PcmSound PcmSound::toInt16() const {
    if (m_format.bitsPerSample == 16)
        return *this;
    QByteArray wide(m_data.size() * 2, Qt::Uninitialized);
    auto* out = reinterpret_cast<std::int16_t*>(wide.data());
    for (qsizetype i = 0; i < m_data.size(); ++i)
        out[i] = static_cast<std::int16_t>((static_cast<std::uint8_t>(m_data[i]) - 128) << 8);
    PcmFormat format = m_format;
    format.bitsPerSample = 16;
    return PcmSound(format, std::move(wide));
}
