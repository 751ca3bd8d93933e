#include "SequencerDevice.h"

#include "MciError.h"
#include "MidiFile.h"
#include "MidiRenderer.h"

#include <QFileInfo>

int SequencerDevice::open(const QString& path, AudioBackend& backend,
                          std::unique_ptr<MciDevice>& device, QString& detail) {
    if (!QFileInfo(path).isFile()) {
        detail = path;
        return MciError::FileNotFound;
    }
    MidiFile::Info info;
    QByteArray bytes;
    const MidiFile::Error error = MidiFile::read(path, info, &bytes);
    detail = MidiFile::errorText(error);
    if (error == MidiFile::Error::Unreadable)
        return MciError::FileRead;
    if (error != MidiFile::Error::None)
        return MciError::InvalidFile;
    std::unique_ptr<SequencerDevice> sequencer(new SequencerDevice(backend));
    sequencer->m_smf = std::move(bytes);
    sequencer->m_lengthMs = info.lengthMs;
    device = std::move(sequencer);
    return MciError::None;
}

int SequencerDevice::playable(PcmSound& sound) {
    if (!m_isRendered) {
        QString error;
        if (!MidiRenderer::render(m_smf, m_lengthMs, m_rendered, error))
            return fail(MciError::DriverInternal, error);
        m_isRendered = true;
    }
    sound = m_rendered;
    return MciError::None;
}
