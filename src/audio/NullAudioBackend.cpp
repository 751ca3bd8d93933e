#include "NullAudioBackend.h"

#include "Clock.h"

namespace {
class ClockStream : public PlaybackStream {
public:
    ClockStream(int sampleRate, std::int64_t frames)
        : m_sampleRate(sampleRate), m_frames(frames), m_start(Clock::instance().tickCount()) {}

    std::int64_t framesPlayed() const override {
        // Unsigned subtraction keeps working across the 32-bit wrap of the tick counter.
        const std::uint32_t elapsed = Clock::instance().tickCount() - m_start;
        return std::min<std::int64_t>(m_frames, std::int64_t(elapsed) * m_sampleRate / 1000);
    }
    bool finished() const override { return framesPlayed() >= m_frames; }

private:
    int m_sampleRate;
    std::int64_t m_frames;
    std::uint32_t m_start;
};
} // namespace

std::unique_ptr<PlaybackStream> NullAudioBackend::clockStream(int sampleRate, std::int64_t frames) {
    return std::make_unique<ClockStream>(sampleRate, frames);
}

std::unique_ptr<PlaybackStream> NullAudioBackend::play(const PcmSound& sound) {
    return clockStream(sound.format().sampleRate, sound.frames());
}

std::unique_ptr<CaptureStream> NullAudioBackend::record(const PcmFormat&, std::int64_t) {
    return nullptr;
}
