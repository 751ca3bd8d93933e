#pragma once

#include "PcmSound.h"
#include "WavHeader.h"

#include <QString>

class QIODevice;

// Our own reader and writer of RIFF WAVE files holding uncompressed PCM:
// 8 or 16 bits, mono or stereo, any sample rate.
class WavFile {
public:
    using Error = WavHeader::Error;

    // Reads the samples a header describes. A data chunk that claims more
    // bytes than the file holds is cut to what is there, so a truncated
    // recording still plays.
    static Error parse(const QByteArray& bytes, PcmSound& sound);
    // The header, when asked for, tells the reason of a refusal in full.
    static Error read(const QString& path, PcmSound& sound, WavHeader* header = nullptr);
    static Error read(QIODevice& device, PcmSound& sound, WavHeader* header = nullptr);
    // Writes through a temporary file that replaces the target only when complete.
    static bool write(const QString& path, const PcmSound& sound);
    static QByteArray toBytes(const PcmSound& sound);
    // The 44 bytes before dataSize bytes of sound in format, for a writer
    // that streams the sound after them.
    static QByteArray header(const PcmFormat& format, quint32 dataSize);

    static QString errorText(Error error, const WavHeader* header = nullptr) {
        return WavHeader::errorText(error, header);
    }
};
