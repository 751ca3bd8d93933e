#pragma once

#include <QString>
#include <cstdint>

class QFile;
class QIODevice;
class WavHeader;

// Cuts the part between two markers out of a WAV file into a new one,
// sample-exactly: the frames from the one nearest to A up to (not including)
// the one nearest to B, in the source's own layout. The samples are copied
// piece by piece, so a recording of hours needs no more memory than one of
// seconds.
class WavTrimmer {
public:
    // -1 for A or B keeps the whole sound. Returns an empty text on success,
    // otherwise why it failed.
    static QString trim(const QString& source, const QString& target, std::int64_t fromMs,
                        std::int64_t toMs);

private:
    static QString copyFrames(QFile& source, const WavHeader& header, std::int64_t first,
                              std::int64_t last, const QString& target);
    static bool copyBytes(QIODevice& from, QIODevice& to, qint64 count);
};
