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
    // The chunks before frames of sound in the layout a file's header
    // describes: plain PCM gets the usual 44 bytes, any other layout keeps
    // its own fmt chunk and the frame count a reader of such a file looks for.
    static QByteArray header(const WavHeader& layout, std::int64_t frames);

    static QString errorText(Error error, const WavHeader* header = nullptr) {
        return WavHeader::errorText(error, header);
    }
};
