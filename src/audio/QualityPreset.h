#pragma once

#include <QString>

// A recording quality preset, stored as "available;samples per second;target
// bytes per second;channels;bits per sample".
struct QualityPreset {
    bool available = true;
    int samplesPerSec = 8000;
    int targetBytesPerSec = 16000;
    int channels = 1;
    int bitsPerSample = 16;

    // The built-in preset "1;8000;16000;1;16".
    static QualityPreset builtIn() { return {}; }
    // Text that does not hold five whole numbers gives the built-in preset.
    static QualityPreset parse(const QString& text);
    QString toString() const;

    // What the sound card records at: bits x rate x channels / 8.
    int bytesPerSec() const { return bitsPerSample * samplesPerSec * channels / 8; }
    int blockAlign() const { return bitsPerSample * channels / 8; }
    // A target below the recorded rate can only be met by compressing to MP3.
    bool isMp3() const { return targetBytesPerSec < bytesPerSec(); }
    // "set <alias> time format ms alignment ... bytespersec ..."
    QString setCommand(const QString& alias) const;
};
