#pragma once

#include "PcmSound.h"

#include <QString>

// Changes a sound's sample rate and mixes it down to mono, for codecs that
// take one rate only (AMR-NB wants 8000 Hz).
class PcmResampler {
public:
    // False with error set when the library refuses the conversion.
    static bool toMono(const PcmSound& source, int sampleRate, PcmSound& result, QString& error);
};
