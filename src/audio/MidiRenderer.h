#pragma once

#include "PcmSound.h"

#include <QString>

// Plays a Standard MIDI File through FluidSynth offline and keeps the result
// as 44100 Hz 16-bit stereo PCM of exactly the song's length.
class MidiRenderer {
public:
    static bool render(const QByteArray& smf, std::int64_t lengthMs, PcmSound& sound,
                       QString& error);
    static QString soundFontPath();

    static constexpr int kSampleRate = 44100;
    // Songs longer than this are cut; a message sound is never near it.
    static constexpr std::int64_t kMaxRenderMs = 10LL * 60 * 1000;
};
