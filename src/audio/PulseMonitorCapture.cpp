#include "PulseMonitorCapture.h"

#include <pulse/simple.h>

namespace {
// Blocks of 20 ms: stopping waits for at most one of them.
constexpr int kBlockMs = 20;

pa_sample_spec toPulse(const PcmFormat& format) {
    pa_sample_spec layout{};
    layout.format = format.bitsPerSample == 8 ? PA_SAMPLE_U8 : PA_SAMPLE_S16LE;
    layout.rate = std::uint32_t(format.sampleRate);
    layout.channels = std::uint8_t(format.channels);
    return layout;
}
} // namespace

std::unique_ptr<CaptureStream> PulseMonitorCapture::start(const PcmFormat& format,
                                                          std::int64_t maxFrames) {
    const pa_sample_spec layout = toPulse(format);
    if (!pa_sample_spec_valid(&layout))
        return nullptr;
    pa_buffer_attr buffer;
    buffer.maxlength = std::uint32_t(-1);
    buffer.tlength = buffer.prebuf = buffer.minreq = std::uint32_t(-1);
    buffer.fragsize = std::uint32_t(format.bytesPerSecond() * kBlockMs / 1000);
    int error = 0;
    pa_simple* server = pa_simple_new(nullptr, "Vellumo", PA_STREAM_RECORD, "@DEFAULT_MONITOR@",
                                      "Recording", &layout, nullptr, &buffer, &error);
    if (!server)
        return nullptr;
    return std::unique_ptr<CaptureStream>(new PulseMonitorCapture(server, format, maxFrames));
}

PulseMonitorCapture::PulseMonitorCapture(pa_simple* server, const PcmFormat& format,
                                         std::int64_t maxFrames)
    : m_server(server),
      m_blockBytes(std::max<qsizetype>(format.bytesPerFrame(), format.sampleRate * kBlockMs / 1000 *
                                                                   format.bytesPerFrame())),
      m_maxBytes(maxFrames * format.bytesPerFrame()), m_reader([this] { run(); }) {}

PulseMonitorCapture::~PulseMonitorCapture() {
    stop();
    pa_simple_free(m_server);
}

void PulseMonitorCapture::run() {
    QByteArray block;
    for (qsizetype have = 0; !m_stopping && have < m_maxBytes; have += block.size()) {
        block.resize(std::min(m_blockBytes, m_maxBytes - have));
        int error = 0;
        if (pa_simple_read(m_server, block.data(), size_t(block.size()), &error) < 0)
            break;
        const std::lock_guard<std::mutex> hold(m_lock);
        m_data.append(block);
    }
    m_finished = true;
}

QByteArray PulseMonitorCapture::captured() const {
    const std::lock_guard<std::mutex> hold(m_lock);
    return m_data;
}

void PulseMonitorCapture::stop() {
    m_stopping = true;
    if (m_reader.joinable())
        m_reader.join();
}
