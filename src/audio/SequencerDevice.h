#pragma once

#include "MciDevice.h"

// The "sequencer" device: a Standard MIDI File, measured by our own reader and
// rendered to sound by the synthesizer when it is first played.
class SequencerDevice : public MciDevice {
public:
    static int open(const QString& path, AudioBackend& backend, std::unique_ptr<MciDevice>& device,
                    QString& detail);

protected:
    std::int64_t lengthMs() const override { return m_lengthMs; }
    int playable(PcmSound& sound) override;

private:
    explicit SequencerDevice(AudioBackend& backend) : MciDevice(backend) {}

    QByteArray m_smf;
    std::int64_t m_lengthMs = 0;
    PcmSound m_rendered;
    bool m_isRendered = false;
};
