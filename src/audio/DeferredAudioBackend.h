#pragma once

#include "AudioBackend.h"

#include <functional>

// Chooses the real backend only when a sound is first played or recorded.
// Measuring a file needs no sound device, and asking the sound server for
// one can take half a minute when the server does not answer.
class DeferredAudioBackend : public AudioBackend {
public:
    using Factory = std::function<std::unique_ptr<AudioBackend>()>;
    explicit DeferredAudioBackend(Factory factory) : m_factory(std::move(factory)) {}

    QString name() const override { return real().name(); }
    bool hasInput(RecordingInput input) const override { return real().hasInput(input); }
    std::unique_ptr<PlaybackStream> play(const PcmSound& sound) override;
    std::unique_ptr<CaptureStream> record(const PcmFormat& format, std::int64_t maxFrames) override;
    // Whether the real backend has been chosen yet.
    bool chosen() const { return m_real != nullptr; }

private:
    AudioBackend& real() const;

    Factory m_factory;
    mutable std::unique_ptr<AudioBackend> m_real;
};
