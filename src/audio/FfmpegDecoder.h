#pragma once

#include "PcmSound.h"

#include <QString>

class QImage;

// Compressed sounds and video files through FFmpeg: the decoded audio as
// 16-bit PCM at the file's own rate, and the length of a media file.
class FfmpegDecoder {
public:
    struct MediaInfo {
        bool hasAudio = false;
        bool hasVideo = false;
        std::int64_t lengthMs = -1;
    };

    // Decodes the first audio stream to 16-bit PCM, mono or stereo (more
    // channels are mixed down to two). Stops at maxMs so a hostile file cannot
    // fill memory: the sound is held whole, to be played. The encoder's start delay and end padding
    // are dropped, so the sample count is the one that was encoded.
    static bool decodeAudio(const QString& path, PcmSound& sound, QString& error,
                            std::int64_t maxMs = kMaxDecodeMs);
    // The exact length of the first audio stream, as decoding would give it,
    // read from its packets without decoding them where they tell their length.
    static bool audioLengthMs(const QString& path, std::int64_t& lengthMs, QString& error);
    // Stream kinds and the container's length in milliseconds.
    static bool probe(const QString& path, MediaInfo& info, QString& error);

    // The first picture of the first video stream (an AVI, an MP4), at its
    // own size; false with error set when there is none.
    static bool firstVideoFrame(const QString& path, QImage& picture, QString& error);

    static constexpr std::int64_t kMaxDecodeMs = 20LL * 60 * 1000;
    static constexpr int kMaxFrameEdge = 8192;
    static constexpr int kMaxPacketsForAFrame = 256;
};
