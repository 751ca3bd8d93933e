#pragma once

#include "PcmSound.h"

#include <QString>
#include <cstdint>

// Cuts the part between two markers out of a WAV file into a new one,
// sample-exactly: the frames from the one nearest to A up to (not including)
// the one nearest to B, in the source's own format.
class WavTrimmer {
public:
    // -1 for A or B keeps the whole sound. Returns an empty text on success,
    // otherwise why it failed.
    static QString trim(const QString& source, const QString& target, std::int64_t fromMs,
                        std::int64_t toMs);

private:
    static QString write(const QString& target, const PcmSound& sound);
};
