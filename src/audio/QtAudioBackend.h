#pragma once

#include "AudioBackend.h"

#include <QAudioDevice>

// The sound card through Qt Multimedia: QAudioSink plays, QAudioSource records
// the input; what the computer plays is recorded from the sound server's monitor.
class QtAudioBackend : public AudioBackend {
public:
    QtAudioBackend(QAudioDevice output, QAudioDevice input)
        : m_output(std::move(output)), m_input(std::move(input)) {}

    QString name() const override { return QStringLiteral("qt"); }
    bool hasInput(RecordingInput input) const override;
    std::unique_ptr<PlaybackStream> play(const PcmSound& sound) override;
    std::unique_ptr<CaptureStream> record(const PcmFormat& format, std::int64_t maxFrames) override;

    // The default devices, or nullptr when the system has no sound output.
    static std::unique_ptr<AudioBackend> createIfAvailable();

private:
    QAudioDevice m_output;
    QAudioDevice m_input;
};
