#pragma once

#include "AudioBackend.h"

// For machines without a sound device: playing keeps time on the program's
// millisecond clock without making a sound, and there is nothing to record from.
class NullAudioBackend : public AudioBackend {
public:
    QString name() const override { return QStringLiteral("null"); }
    bool hasInput(RecordingInput) const override { return false; }
    std::unique_ptr<PlaybackStream> play(const PcmSound& sound) override;
    std::unique_ptr<CaptureStream> record(const PcmFormat& format, std::int64_t maxFrames) override;

    // A silent stream over the clock, also used for media that have no sound
    // (a video's or an animation's running time).
    static std::unique_ptr<PlaybackStream> clockStream(int sampleRate, std::int64_t frames);
};
