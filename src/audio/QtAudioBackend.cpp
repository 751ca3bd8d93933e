#include "QtAudioBackend.h"

#include <QAudioFormat>
#include <QAudioSink>
#include <QAudioSource>
#include <QBuffer>
#include <QFileInfo>
#include <QMediaDevices>

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

class SourceStream : public CaptureStream {
public:
    SourceStream(const QAudioDevice& device, const PcmFormat& format, std::int64_t maxFrames)
        : m_maxBytes(maxFrames * format.bytesPerFrame()), m_source(device, toQt(format)) {
        m_io = m_source.start();
        if (m_io)
            QObject::connect(m_io, &QIODevice::readyRead, [this] { pull(); });
    }
    ~SourceStream() override { m_source.stop(); }

    bool started() const { return m_io && m_source.error() == QAudio::NoError; }
    QByteArray captured() const override {
        pull();
        return m_data;
    }
    bool finished() const override {
        pull();
        return m_stopped;
    }
    void stop() override {
        pull();
        m_source.stop();
        m_stopped = true;
    }

private:
    // Takes what the device has delivered and stops at the limit, so the
    // recording ends there even when nobody asks about it.
    void pull() const {
        if (m_stopped || !m_io)
            return;
        m_data.append(m_io->read(m_maxBytes - m_data.size()));
        if (m_data.size() >= m_maxBytes || m_source.state() == QAudio::StoppedState) {
            m_source.stop();
            m_stopped = true;
        }
    }

    qsizetype m_maxBytes;
    mutable QAudioSource m_source;
    QIODevice* m_io = nullptr;
    mutable QByteArray m_data;
    mutable bool m_stopped = false;
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

std::unique_ptr<CaptureStream> QtAudioBackend::record(const PcmFormat& format,
                                                      std::int64_t maxFrames) {
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
