#include "WaveAudioDevice.h"

#include "MciError.h"
#include "MciOptions.h"
#include "WavFile.h"

#include <QFileInfo>
#include <cstdlib>

namespace {
// A recording without a limit still has one, so memory stays bounded.
constexpr std::int64_t kLongestRecordingMs = 4LL * 60 * 60 * 1000;
const QStringList kFormatKeywords{"alignment", "channels", "bitspersample", "samplespersec",
                                  "bytespersec"};
// The input level is the loudest sample of the latest 50 ms.
constexpr int kLevelWindowMs = 50;

// The loudest sample of the PCM's tail, as a distance from silence: up to
// 127 for 8-bit sound, up to 32767 for 16-bit.
int peakLevel(const QByteArray& pcm, const PcmFormat& format) {
    const qsizetype frames =
        std::min<qsizetype>(pcm.size() / format.bytesPerFrame(),
                            std::max(1, format.sampleRate * kLevelWindowMs / 1000));
    const qsizetype end = pcm.size() / format.bytesPerFrame() * format.bytesPerFrame();
    const auto* bytes = reinterpret_cast<const unsigned char*>(pcm.constData());
    int peak = 0;
    if (format.bitsPerSample == 8) {
        for (qsizetype i = end - frames * format.bytesPerFrame(); i < end; ++i)
            peak = std::max(peak, std::abs(int(bytes[i]) - 128));
        return std::min(peak, 127);
    }
    for (qsizetype i = end - frames * format.bytesPerFrame(); i + 1 < end; i += 2)
        peak = std::max(peak, std::abs(int(std::int16_t(bytes[i] | bytes[i + 1] << 8))));
    return std::min(peak, 32767);
}
} // namespace

WaveAudioDevice::WaveAudioDevice(AudioBackend& backend)
    : MciDevice(backend), m_sound(PcmFormat{11025, 1, 8}, {}) {}

int WaveAudioDevice::open(const QString& path, AudioBackend& backend,
                          std::unique_ptr<MciDevice>& device, QString& detail) {
    if (!QFileInfo(path).isFile()) {
        detail = path;
        return MciError::FileNotFound;
    }
    PcmSound sound;
    const WavFile::Error error = WavFile::read(path, sound);
    detail = WavFile::errorText(error);
    switch (error) {
    case WavFile::Error::None:
        break;
    case WavFile::Error::Unreadable:
        return MciError::FileRead;
    case WavFile::Error::Compressed:
        return MciError::CompressedWave;
    default:
        return MciError::InvalidFile;
    }
    auto wave = std::make_unique<WaveAudioDevice>(backend);
    wave->m_sound = std::move(sound);
    device = std::move(wave);
    return MciError::None;
}

int WaveAudioDevice::playable(PcmSound& sound) {
    sound = m_sound;
    return MciError::None;
}

int WaveAudioDevice::record(std::optional<std::int64_t> toMs) {
    update();
    stopActivity();
    const std::int64_t limit = m_sound.msToFrame(toMs.value_or(kLongestRecordingMs));
    m_capture = m_backend.record(m_sound.format(), limit);
    if (!m_capture)
        return fail(MciError::InputsUnsuitable, m_backend.name());
    m_sound = PcmSound(m_sound.format(), {});
    m_positionMs = 0;
    m_mode = Mode::Recording;
    return MciError::None;
}

void WaveAudioDevice::finishRecording() {
    m_sound = PcmSound(m_sound.format(), m_capture->captured());
}

std::int64_t WaveAudioDevice::recordedMs() const {
    return m_capture
               ? m_sound.frameToMs(m_capture->captured().size() / m_sound.format().bytesPerFrame())
               : m_sound.lengthMs();
}

int WaveAudioDevice::save(const QString& path) {
    update();
    if (m_mode == Mode::Recording)
        return MciError::DeviceNotReady;
    if (path.isEmpty())
        return MciError::FilenameRequired;
    if (!WavFile::write(path, m_sound))
        return fail(MciError::FileNotSaved, path);
    return MciError::None;
}

int WaveAudioDevice::set(const MciOptions& options) {
    bool changesFormat = false;
    for (const QString& keyword : options.keywords()) {
        if (kFormatKeywords.contains(keyword))
            changesFormat = true;
        else if (keyword != QLatin1String("time format"))
            return MciError::UnrecognizedKeyword;
    }
    if (const int error = setTimeFormat(options); error != MciError::None)
        return error;
    return changesFormat ? applyFormat(options) : MciError::None;
}

// The block alignment and bytes per second must agree with the rest, as
// uncompressed PCM requires.
int WaveAudioDevice::applyFormat(const MciOptions& options) {
    update();
    if (m_mode != Mode::Stopped || m_sound.frames() > 0)
        return MciError::NonapplicableFunction;
    int error = MciError::None;
    const PcmFormat old = m_sound.format();
    const std::int64_t channels = options.number("channels", &error).value_or(old.channels);
    const std::int64_t bits = options.number("bitspersample", &error).value_or(old.bitsPerSample);
    const std::int64_t rate = options.number("samplespersec", &error).value_or(old.sampleRate);
    const auto alignment = options.number("alignment", &error);
    const auto bytesPerSec = options.number("bytespersec", &error);
    if (error != MciError::None)
        return error;
    if (channels > 2 || bits > 16 || rate > 384000)
        return MciError::OutOfRange;
    const PcmFormat format{int(rate), int(channels), int(bits)};
    if (!format.isValid() || alignment.value_or(format.bytesPerFrame()) != format.bytesPerFrame() ||
        bytesPerSec.value_or(format.bytesPerSecond()) != format.bytesPerSecond())
        return MciError::OutOfRange;
    m_sound = PcmSound(format, {});
    return MciError::None;
}

int WaveAudioDevice::status(const QString& item, QString& reply) {
    update();
    const PcmFormat& format = m_sound.format();
    if (item == QLatin1String("samplespersec"))
        reply = QString::number(format.sampleRate);
    else if (item == QLatin1String("bitspersample"))
        reply = QString::number(format.bitsPerSample);
    else if (item == QLatin1String("channels"))
        reply = QString::number(format.channels);
    else if (item == QLatin1String("bytespersec"))
        reply = QString::number(format.bytesPerSecond());
    else if (item == QLatin1String("alignment"))
        reply = QString::number(format.bytesPerFrame());
    else if (item == QLatin1String("level"))
        reply = QString::number(
            m_mode == Mode::Recording && m_capture ? peakLevel(m_capture->captured(), format) : 0);
    else
        return MciDevice::status(item, reply);
    return MciError::None;
}
