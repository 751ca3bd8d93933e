#include "ScriptedAudioBackend.h"

class ScriptedAudioBackend::Playback : public PlaybackStream {
public:
    Playback(ScriptedAudioBackend& backend, const PcmSound& sound)
        : m_backend(&backend), m_sound(sound) {
        backend.m_playbacks.append(this);
    }
    ~Playback() override {
        if (m_backend)
            m_backend->m_playbacks.removeOne(this);
    }

    std::int64_t framesPlayed() const override { return m_played; }
    bool finished() const override { return m_played >= m_sound.frames(); }

    void advance(std::int64_t ms) {
        // Frames follow the total time, so steps that are not whole frames do not drift.
        m_elapsedMs += ms;
        const std::int64_t to = std::min(m_sound.frames(), m_sound.msToFrame(m_elapsedMs));
        m_backend->m_played.append(m_sound.slice(m_played, to).data());
        m_played = to;
    }
    void detach() { m_backend = nullptr; }

private:
    ScriptedAudioBackend* m_backend;
    PcmSound m_sound;
    std::int64_t m_elapsedMs = 0;
    std::int64_t m_played = 0;
};

class ScriptedAudioBackend::Capture : public CaptureStream {
public:
    // The microphone goes on where the last recording stopped; the playback
    // input hears what is played from now on.
    Capture(ScriptedAudioBackend& backend, const PcmFormat& format, std::int64_t maxFrames)
        : m_backend(&backend), m_format(format), m_maxBytes(maxFrames * format.bytesPerFrame()),
          m_fromPlayback(backend.recordingInput() == RecordingInput::Playback),
          m_playbackRead(backend.m_played.size()) {
        backend.m_captures.append(this);
    }
    ~Capture() override {
        if (m_backend)
            m_backend->m_captures.removeOne(this);
    }

    QByteArray captured() const override { return m_data; }
    bool finished() const override { return m_stopped || m_data.size() >= m_maxBytes; }
    void stop() override { m_stopped = true; }

    void advance(std::int64_t ms) {
        if (finished())
            return;
        m_elapsedMs += ms;
        const qsizetype due = m_elapsedMs * m_format.sampleRate / 1000 * m_format.bytesPerFrame();
        const qsizetype wanted = std::min(due, m_maxBytes) - m_data.size();
        const QByteArray& source = m_fromPlayback ? m_backend->m_played : m_backend->m_microphone;
        qsizetype& read = m_fromPlayback ? m_playbackRead : m_backend->m_microphoneRead;
        const QByteArray chunk = source.mid(read, wanted);
        read += chunk.size();
        m_data.append(chunk);
        m_data.append(
            QByteArray(wanted - chunk.size(), m_format.bitsPerSample == 8 ? '\x80' : '\0'));
    }
    void detach() { m_backend = nullptr; }

private:
    ScriptedAudioBackend* m_backend;
    PcmFormat m_format;
    qsizetype m_maxBytes;
    bool m_fromPlayback;
    qsizetype m_playbackRead;
    std::int64_t m_elapsedMs = 0;
    QByteArray m_data;
    bool m_stopped = false;
};

ScriptedAudioBackend::~ScriptedAudioBackend() {
    for (Playback* playback : m_playbacks)
        playback->detach();
    for (Capture* capture : m_captures)
        capture->detach();
}

std::unique_ptr<PlaybackStream> ScriptedAudioBackend::play(const PcmSound& sound) {
    return std::make_unique<Playback>(*this, sound);
}

std::unique_ptr<CaptureStream> ScriptedAudioBackend::record(const PcmFormat& format,
                                                            std::int64_t maxFrames) {
    if (m_refuseRecording)
        return nullptr;
    return std::make_unique<Capture>(*this, format, maxFrames);
}

void ScriptedAudioBackend::advance(std::int64_t ms) {
    for (Playback* playback : m_playbacks)
        playback->advance(ms);
    for (Capture* capture : m_captures)
        capture->advance(ms);
}
