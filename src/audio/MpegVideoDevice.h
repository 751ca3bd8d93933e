#pragma once

#include "MciDevice.h"

// The "MPEGVideo" device: compressed sounds (MP3 and what else FFmpeg reads),
// videos and animated GIFs. A sound plays what it decodes to; a video or an
// animation only runs its time, silently.
class MpegVideoDevice : public MciDevice {
public:
    static int open(const QString& path, AudioBackend& backend, std::unique_ptr<MciDevice>& device,
                    QString& detail);

protected:
    std::int64_t lengthMs() const override { return m_lengthMs; }
    int playable(PcmSound& sound) override;
    bool hasSound() const override { return m_hasSound; }

private:
    explicit MpegVideoDevice(AudioBackend& backend) : MciDevice(backend) {}
    bool load(const QString& path, QString& detail);

    std::int64_t m_lengthMs = 0;
    QString m_path;
    PcmSound m_sound;
    bool m_hasSound = false;
};
