#pragma once

#include "PcmSound.h"

#include <QString>
#include <memory>

// A sound being played. It starts when created and stops when destroyed.
class PlaybackStream {
public:
    virtual ~PlaybackStream() = default;
    // Frames of the sound played so far, counted from the first frame given.
    virtual std::int64_t framesPlayed() const = 0;
    virtual bool finished() const = 0;
};

// A recording from the sound input. It starts when created, stops by itself
// after maxFrames and when stop() is called, and keeps what it captured.
class CaptureStream {
public:
    virtual ~CaptureStream() = default;
    virtual QByteArray captured() const = 0;
    virtual bool finished() const = 0;
    virtual void stop() = 0;
};

// Where a recording takes its sound from: the microphone or line input, or
// what the computer itself is playing.
enum class RecordingInput { Microphone, Playback };

// Where the media commands make sound: a real device, a silent clock, or a
// test script.
class AudioBackend {
public:
    virtual ~AudioBackend() = default;
    virtual QString name() const = 0;

    // Whether there is anything to record from on that input.
    virtual bool hasInput(RecordingInput input) const = 0;
    // The input the next recordings take their sound from, as the system's
    // recording mixer would choose it: the media commands stay the same.
    void setRecordingInput(RecordingInput input) { m_recordingInput = input; }
    RecordingInput recordingInput() const { return m_recordingInput; }

    // Plays a 16-bit sound; nullptr when it cannot be played.
    virtual std::unique_ptr<PlaybackStream> play(const PcmSound& sound) = 0;
    // Records in the format; nullptr when no input can record it.
    virtual std::unique_ptr<CaptureStream> record(const PcmFormat& format,
                                                  std::int64_t maxFrames) = 0;

    // The sound device when one exists, otherwise the silent backend, chosen
    // when first used. The environment variable VELLUMO_AUDIO=null forces the
    // silent one.
    static std::unique_ptr<AudioBackend> createDefault();

private:
    RecordingInput m_recordingInput = RecordingInput::Microphone;
};
