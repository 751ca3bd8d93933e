#pragma once

#include "MciDevice.h"
#include "WavHeader.h"

// The "waveaudio" device: plays WAV files, and records new sounds in the
// format given by "set" and saves them as WAV. A file is opened by its
// header alone, so measuring it costs nothing however long it is; its
// samples are read when it is first played or saved, those of a coding
// other than plain PCM through the decoder.
class WaveAudioDevice : public MciDevice {
public:
    // A new, empty recording in the device's default format (11025 Hz, 8 bits, mono).
    explicit WaveAudioDevice(AudioBackend& backend);
    // Opens a WAV file; an error number and the reason on failure.
    static int open(const QString& path, AudioBackend& backend, std::unique_ptr<MciDevice>& device,
                    QString& detail);

    // A recording starts from nothing; without "to" it runs until stopped.
    int record(std::optional<std::int64_t> toMs) override;
    int save(const QString& path) override;
    int set(const MciOptions& options) override;
    int status(const QString& item, QString& reply) override;

protected:
    std::int64_t lengthMs() const override;
    int playable(PcmSound& sound) override;
    void finishRecording() override;
    std::int64_t recordedMs() const override;

private:
    int applyFormat(const MciOptions& options);
    int load();
    void formatStatus(const QString& item, QString& reply) const;

    PcmSound m_sound;
    // The file the device was opened on, while its samples are not yet read.
    std::optional<WavHeader> m_file;
    QString m_path;
};
