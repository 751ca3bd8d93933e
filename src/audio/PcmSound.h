#pragma once

#include <QByteArray>
#include <cstdint>

// The shape of interleaved integer PCM: 8-bit samples are unsigned, 16-bit
// samples signed little-endian, as in a WAV file.
struct PcmFormat {
    int sampleRate = 8000;
    int channels = 1;
    int bitsPerSample = 16;

    int bytesPerFrame() const { return channels * bitsPerSample / 8; }
    int bytesPerSecond() const { return sampleRate * bytesPerFrame(); }
    bool isValid() const;
    bool operator==(const PcmFormat&) const = default;
};

// A whole sound held in memory. Positions are frames (one sample of every
// channel). Milliseconds and frames are converted to the nearest whole one,
// so a time turned into a frame and back is the same time at any rate above
// 1000 Hz: a cut from 1000 to 2500 ms is 1500 ms long even at 11025 Hz.
class PcmSound {
public:
    PcmSound() = default;
    PcmSound(PcmFormat format, QByteArray data);

    const PcmFormat& format() const { return m_format; }
    const QByteArray& data() const { return m_data; }
    std::int64_t frames() const;
    std::int64_t lengthMs() const { return frameToMs(frames()); }

    std::int64_t msToFrame(std::int64_t ms) const { return msToFrame(ms, m_format.sampleRate); }
    std::int64_t frameToMs(std::int64_t frame) const {
        return frameToMs(frame, m_format.sampleRate);
    }
    // The same at any rate, for sounds measured rather than held; a count
    // too large for milliseconds gives the largest there is.
    static std::int64_t msToFrame(std::int64_t ms, int sampleRate);
    static std::int64_t frameToMs(std::int64_t frame, int sampleRate);

    // The frames [from, to) as a sound of the same format; the range is
    // clamped to the sound.
    PcmSound slice(std::int64_t fromFrame, std::int64_t toFrame) const;
    // The same sound with 16-bit samples (8-bit samples are widened).
    PcmSound toInt16() const;

private:
    PcmFormat m_format;
    QByteArray m_data;
};
