#pragma once

#include "AudioBackend.h"

#include <QList>

// A sound card for tests: the microphone plays back PCM the test supplies,
// everything played is kept (and heard by the playback input as it was
// played), and time moves only when the test says so.
class ScriptedAudioBackend : public AudioBackend {
public:
    ScriptedAudioBackend() = default;
    ~ScriptedAudioBackend() override;
    ScriptedAudioBackend(const ScriptedAudioBackend&) = delete;
    ScriptedAudioBackend& operator=(const ScriptedAudioBackend&) = delete;

    QString name() const override { return QStringLiteral("scripted"); }
    bool hasInput(RecordingInput) const override { return true; }
    std::unique_ptr<PlaybackStream> play(const PcmSound& sound) override;
    std::unique_ptr<CaptureStream> record(const PcmFormat& format, std::int64_t maxFrames) override;

    // Bytes the microphone delivers, in whatever format a recording asks for;
    // after them it is silent.
    void setMicrophone(const QByteArray& pcm) { m_microphone = pcm; }
    // Moves every running stream forward by that much time.
    void advance(std::int64_t ms);
    // Everything played so far, 16-bit, in the order it was played.
    const QByteArray& played() const { return m_played; }
    void refuseRecording(bool refuse) { m_refuseRecording = refuse; }

private:
    class Playback;
    class Capture;
    friend class Playback;
    friend class Capture;

    QByteArray m_microphone;
    qsizetype m_microphoneRead = 0;
    QByteArray m_played;
    bool m_refuseRecording = false;
    QList<Playback*> m_playbacks;
    QList<Capture*> m_captures;
};
