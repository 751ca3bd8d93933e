#include "DeferredAudioBackend.h"

std::unique_ptr<PlaybackStream> DeferredAudioBackend::play(const PcmSound& sound) {
    return real().play(sound);
}

std::unique_ptr<CaptureStream> DeferredAudioBackend::record(const PcmFormat& format,
                                                            std::int64_t maxFrames) {
    // The input is chosen on this object, the way the program's mixer chooses it.
    real().setRecordingInput(recordingInput());
    return real().record(format, maxFrames);
}

AudioBackend& DeferredAudioBackend::real() const {
    if (!m_real)
        m_real = m_factory();
    return *m_real;
}
