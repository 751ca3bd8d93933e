#pragma once

#include <QString>
#include <cstdint>

// The recorder's player of a loaded sound file, under the alias "csound":
// plays the whole sound or only the part between two markers A and B.
class AudioFilePlayer {
public:
    // Each returns 0 or an error number for mciGetErrorString.
    int Open(const QString& path);
    // -1 for A or B plays the whole sound.
    int Play(std::int64_t fromMs, std::int64_t toMs);
    int Stop();
    void Close();
    // "playing" or "stopped", and the position in milliseconds.
    int Poll(QString& mode, std::int64_t& positionMs);
    // A "status" item of the loaded sound ("samplespersec", ...); "" when it cannot be read.
    QString Status(const QString& item) const;

    // The length read when the file was opened, -1 before.
    std::int64_t lengthMs() const { return m_lengthMs; }

    static constexpr int kReplySize = 512;

private:
    std::int64_t m_lengthMs = -1;
};
