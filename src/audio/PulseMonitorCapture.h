#pragma once

#include "AudioBackend.h"

#include <atomic>
#include <mutex>
#include <thread>

struct pa_simple;

// A recording of what the computer is playing: the sound server's monitor of
// its default output, which Qt does not offer as an input. A thread reads the
// server in short blocks, so the recording stops promptly, and it ends by
// itself at the limit or when the server goes away, keeping what it has.
class PulseMonitorCapture : public CaptureStream {
public:
    // nullptr when the server refuses a monitor recording in that format.
    static std::unique_ptr<CaptureStream> start(const PcmFormat& format, std::int64_t maxFrames);
    ~PulseMonitorCapture() override;

    QByteArray captured() const override;
    bool finished() const override { return m_finished; }
    void stop() override;

private:
    PulseMonitorCapture(pa_simple* server, const PcmFormat& format, std::int64_t maxFrames);
    void run();

    pa_simple* m_server;
    qsizetype m_blockBytes;
    qsizetype m_maxBytes;
    mutable std::mutex m_lock;
    QByteArray m_data;
    std::atomic<bool> m_stopping = false;
    std::atomic<bool> m_finished = false;
    std::thread m_reader;
};
