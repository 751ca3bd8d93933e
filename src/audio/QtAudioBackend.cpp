#include "QtAudioBackend.h"

#include "PulseMonitorCapture.h"

#include <QAudioFormat>
#include <QAudioSink>
#include <QAudioSource>
#include <QBuffer>
#include <QFileInfo>
#include <QMediaDevices>
#include <functional>

namespace {
QAudioFormat toQt(const PcmFormat& format) {
    QAudioFormat qt;
    qt.setSampleRate(format.sampleRate);
    qt.setChannelCount(format.channels);
    qt.setSampleFormat(format.bitsPerSample == 8 ? QAudioFormat::UInt8 : QAudioFormat::Int16);
    return qt;
}

class SinkStream : public PlaybackStream {
public:
    SinkStream(const QAudioDevice& device, const PcmSound& sound)
        : m_data(sound.data()), m_frames(sound.frames()), m_rate(sound.format().sampleRate),
          m_sink(device, toQt(sound.format())) {
        m_buffer.setData(m_data);
        m_buffer.open(QIODevice::ReadOnly);
        m_sink.start(&m_buffer);
    }
    ~SinkStream() override { m_sink.stop(); }

    bool started() const { return m_sink.error() == QAudio::NoError; }
    std::int64_t framesPlayed() const override {
        return std::min<std::int64_t>(m_frames, m_sink.processedUSecs() * m_rate / 1000000);
    }
    bool finished() const override {
        // The sink goes idle when it has drained the buffer, or stops on an error.
        return m_sink.state() == QAudio::StoppedState ||
               (m_sink.state() == QAudio::IdleState && m_buffer.atEnd());
    }

private:
    QByteArray m_data;
    std::int64_t m_frames;
    int m_rate;
    QBuffer m_buffer;
    QAudioSink m_sink;
};

// Where the source pushes what it records. It is ours, not the source's:
// a source that fails (the sound server went away) drops the device it
// hands out for reading, and with it what was not yet read.
class CaptureBuffer : public QIODevice {
public:
    CaptureBuffer(qsizetype maxBytes, std::function<void()> full)
        : m_maxBytes(maxBytes), m_full(std::move(full)) {
        open(QIODevice::WriteOnly);
    }
    const QByteArray& data() const { return m_data; }
    bool isFull() const { return m_data.size() >= m_maxBytes; }

protected:
    qint64 readData(char*, qint64) override { return -1; }
    // Takes everything offered and keeps what fits under the limit, so the
    // recording is exactly as long as asked for.
    qint64 writeData(const char* data, qint64 size) override {
        const bool wasFull = isFull();
        m_data.append(data, std::min<qint64>(size, m_maxBytes - m_data.size()));
        if (isFull() && !wasFull)
            QMetaObject::invokeMethod(this, m_full, Qt::QueuedConnection);
        return size;
    }

private:
    QByteArray m_data;
    qsizetype m_maxBytes;
    std::function<void()> m_full;
};

class SourceStream : public CaptureStream {
public:
    SourceStream(const QAudioDevice& device, const PcmFormat& format, std::int64_t maxFrames)
        : m_source(device, toQt(format)),
          m_buffer(maxFrames * format.bytesPerFrame(), [this] { stop(); }) {
        m_source.start(&m_buffer);
    }
    ~SourceStream() override { m_source.stop(); }

    bool started() const {
        return m_source.error() == QAudio::NoError && m_source.state() != QAudio::StoppedState;
    }
    QByteArray captured() const override { return m_buffer.data(); }
    // Ends at the limit, on stop, and when the source stops by itself.
    bool finished() const override {
        return m_stopped || m_buffer.isFull() || m_source.state() == QAudio::StoppedState;
    }
    void stop() override {
        m_source.stop();
        m_stopped = true;
    }

private:
    QAudioSource m_source;
    CaptureBuffer m_buffer;
    bool m_stopped = false;
};
} // namespace

std::unique_ptr<PlaybackStream> QtAudioBackend::play(const PcmSound& sound) {
    if (m_output.isNull() || !m_output.isFormatSupported(toQt(sound.format())))
        return nullptr;
    auto stream = std::make_unique<SinkStream>(m_output, sound);
    if (!stream->started())
        return nullptr;
    return stream;
}

bool QtAudioBackend::hasInput(RecordingInput input) const {
    // Every sound server has a monitor of its output.
    return input == RecordingInput::Playback || !m_input.isNull();
}

std::unique_ptr<CaptureStream> QtAudioBackend::record(const PcmFormat& format,
                                                      std::int64_t maxFrames) {
    if (recordingInput() == RecordingInput::Playback)
        return PulseMonitorCapture::start(format, maxFrames);
    if (m_input.isNull() || !m_input.isFormatSupported(toQt(format)))
        return nullptr;
    auto stream = std::make_unique<SourceStream>(m_input, format, maxFrames);
    if (!stream->started())
        return nullptr;
    return stream;
}

namespace {
// Qt's sound devices on Linux are those of a PulseAudio-compatible server
// (PipeWire offers the same socket). Asking Qt when no server runs only makes
// it complain on standard error, so look for the server first.
bool soundServerReachable() {
    if (!qEnvironmentVariableIsEmpty("PULSE_SERVER"))
        return true;
    const QString runtime = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return !runtime.isEmpty() && QFileInfo::exists(runtime + "/pulse/native");
}
} // namespace

std::unique_ptr<AudioBackend> QtAudioBackend::createIfAvailable() {
    if (!soundServerReachable())
        return nullptr;
    const QAudioDevice output = QMediaDevices::defaultAudioOutput();
    if (output.isNull())
        return nullptr;
    return std::make_unique<QtAudioBackend>(output, QMediaDevices::defaultAudioInput());
}
