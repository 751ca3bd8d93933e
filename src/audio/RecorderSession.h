#pragma once

#include "QualityPreset.h"

#include <QString>
#include <cstdint>

// The recording device of the recorder, always under the alias "mysound":
// the command sequence that starts a recording in a quality preset with a
// time limit the device keeps by itself, playing it back, and saving it.
class RecorderSession {
public:
    // Sends close, open new, set and record in this order and stops at the
    // first error, which it returns (0 on success).
    int StartRecording(const QualityPreset& preset, std::int64_t maxRecordTimeMs);
    int Stop();
    int Play();
    // "recording", "playing" or "stopped"; "stopped" when the device is gone.
    QString Mode();
    std::int64_t LengthMs();
    // How loud the input is while recording, from 0 (silence) to 1 (full scale).
    double Level(int bitsPerSample);
    int Save(const QString& path);
    // Closes the recorder's devices: the recording and the file player.
    static void CloseSound();

    static QString alias() { return QStringLiteral("mysound"); }
    static constexpr int kReplySize = 512;
};
