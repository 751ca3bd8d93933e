#pragma once

#include "PcmSound.h"

#include <QString>

// Our own reader and writer of RIFF WAVE files holding uncompressed PCM:
// 8 or 16 bits, mono or stereo, any sample rate.
class WavFile {
public:
    enum class Error { None, Unreadable, NotWave, Compressed, Unsupported, NoData };

    // Parses a whole file image. A data chunk that claims more bytes than the
    // file holds is cut to what is there, so a truncated recording still plays.
    static Error parse(const QByteArray& bytes, PcmSound& sound);
    static Error read(const QString& path, PcmSound& sound);
    // Writes through a temporary file that replaces the target only when complete.
    static bool write(const QString& path, const PcmSound& sound);
    static QByteArray toBytes(const PcmSound& sound);
    // The 44 bytes before dataSize bytes of sound in format, for a writer
    // that streams the sound after them.
    static QByteArray header(const PcmFormat& format, quint32 dataSize);

    static QString errorText(Error error);
};
