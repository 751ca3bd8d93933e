#pragma once

#include <QString>
#include <cstdint>

// Plays any sound of the message under the alias "playsound" and tells a
// sound's kind, length, sample rate and sample size as the information string
// "EXT;length;rate;bits" ("-1" for what cannot be read).
class modPlaySound {
public:
    // 0 when playing, otherwise an error number for mciGetErrorString, or
    // kNotPlayable for a kind of file no device plays (iMelody, AMR, ...).
    static int PlaySound(const QString& path);
    static void StopSound();
    static QString GetSoundInfo(const QString& path);
    // "playing" or "stopped", and the position in milliseconds (-1 unknown).
    static void GetPlayStatus(QString& mode, std::int64_t& position);

    // The extension in capitals after the file name's last ".", empty without one.
    static QString SoundExtension(const QString& path);
    // "open waveaudio!" and the like for a playable extension, else empty.
    static QString OpenCommand(const QString& extension);

    static constexpr int kNotPlayable = -1;
    static constexpr int kReplySize = 128;
};
