#pragma once

#include "AudioBackend.h"

#include <QString>
#include <memory>
#include <optional>

class MciOptions;

// One device opened by the media command interpreter under an alias. Play,
// stop and the common status items work alike for every kind; recording,
// saving and the sample format belong to the waveaudio device.
//
// Every command first brings the device up to date, so a playback that has
// run out, or a recording that has reached its limit, is seen as stopped.
class MciDevice {
public:
    explicit MciDevice(AudioBackend& backend) : m_backend(backend) {}
    virtual ~MciDevice();
    MciDevice(const MciDevice&) = delete;
    MciDevice& operator=(const MciDevice&) = delete;

    // Each returns an error number, 0 when the command was carried out.
    int play(std::optional<std::int64_t> fromMs, std::optional<std::int64_t> toMs);
    int stop();
    virtual int record(std::optional<std::int64_t> toMs);
    virtual int save(const QString& path);
    virtual int set(const MciOptions& options);
    virtual int status(const QString& item, QString& reply);

    // The library's reason for the last failure, for a fuller message.
    QString errorDetail() const { return m_errorDetail; }

protected:
    enum class Mode { Stopped, Playing, Recording };

    virtual std::int64_t lengthMs() const = 0;
    // The sound to play; false with an error number when it cannot be made.
    // Devices without sound (a silent video) leave it empty and play on the clock.
    virtual int playable(PcmSound& sound) = 0;
    virtual bool hasSound() const { return true; }
    // Called when a recording ends, by itself or by a command.
    virtual void finishRecording() {}
    virtual std::int64_t recordedMs() const { return 0; }

    int setTimeFormat(const MciOptions& options);
    void update();
    void stopActivity();
    int fail(int code, const QString& detail);

    AudioBackend& m_backend;
    Mode m_mode = Mode::Stopped;
    std::int64_t m_positionMs = 0;
    std::unique_ptr<CaptureStream> m_capture;

private:
    std::int64_t positionMs() const;

    std::unique_ptr<PlaybackStream> m_playback;
    std::int64_t m_playFromMs = 0;
    std::int64_t m_playToMs = 0;
    int m_playRate = 1000;
    QString m_errorDetail;
};
