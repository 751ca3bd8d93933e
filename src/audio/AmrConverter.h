#pragma once

#include <QString>

// Converts between 8000 Hz 16-bit mono WAV and AMR-NB in its "#!AMR\n"
// storage format (12.2 kbit/s when encoding). Both take the source first and
// return 0 on success or one of the numbers below, which the program shows
// after its conversion error text.
class AmrConverter {
public:
    enum Result {
        Ok = 0,
        SourceUnreadable = 1,
        WrongFormat = 2,
        TargetUnwritable = 3,
        CorruptSource = 4,
        CodecFailed = 5,
        TooLong = 6,
        WidebandSource = 7,
        CompressedSource = 8,
    };

    static int wav2amr(const QString& source, const QString& target);
    static int amr2wav(const QString& source, const QString& target);
    // In the user's language; a target that cannot be written is named.
    static QString errorText(int result, const QString& target = QString());

    static constexpr int kSampleRate = 8000;
    static constexpr int kFrameSamples = 160;
};
