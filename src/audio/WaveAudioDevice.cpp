#include "WaveAudioDevice.h"

#include "FfmpegDecoder.h"
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
    WavHeader header;
    const WavHeader::Error error = header.read(path);
    detail = WavHeader::errorText(error, &header);
    if (error == WavHeader::Error::Unreadable)
        return MciError::FileRead;
    if (error != WavHeader::Error::None)
        return MciError::InvalidFile;
    auto wave = std::make_unique<WaveAudioDevice>(backend);
    wave->m_file = header;
    wave->m_path = path;
    // A recording over the file keeps its format, as it did when the file was read whole.
    if (header.isPlainPcm())
        wave->m_sound = PcmSound(header.pcmFormat(), {});
    device = std::move(wave);
    return MciError::None;
}

std::int64_t WaveAudioDevice::lengthMs() const {
    return m_file ? m_file->lengthMs() : m_sound.lengthMs();
}

// Plain PCM is read as it is; any other coding is decoded to 16 bits.
int WaveAudioDevice::load() {
    if (!m_file)
        return MciError::None;
    PcmSound sound;
    QString why;
    if (m_file->isPlainPcm()) {
        if (const auto error = WavFile::read(m_path, sound); error != WavFile::Error::None)
            return fail(MciError::FileRead, WavFile::errorText(error));
    } else if (!FfmpegDecoder::decodeAudio(m_path, sound, why)) {
        return fail(MciError::CompressedWave,
                    WavHeader::errorText(WavHeader::Error::Compressed, &*m_file) + ": " + why);
    }
    m_sound = std::move(sound);
    m_file.reset();
    return MciError::None;
}

int WaveAudioDevice::playable(PcmSound& sound) {
    if (const int error = load(); error != MciError::None)
        return error;
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
    m_file.reset();
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
    if (const int error = load(); error != MciError::None)
        return error;
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
    if (m_mode != Mode::Stopped || lengthMs() > 0 || m_sound.frames() > 0)
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
    if (item == QLatin1String("level")) {
        reply = QString::number(m_mode == Mode::Recording && m_capture
                                    ? peakLevel(m_capture->captured(), m_sound.format())
                                    : 0);
        return MciError::None;
    }
    if (!kFormatKeywords.contains(item))
        return MciDevice::status(item, reply);
    formatStatus(item, reply);
    return MciError::None;
}

// A file not yet read tells its own layout, whatever its coding.
void WaveAudioDevice::formatStatus(const QString& item, QString& reply) const {
    const PcmFormat& format = m_sound.format();
    const bool file = m_file.has_value();
    std::int64_t value = 0;
    if (item == QLatin1String("samplespersec"))
        value = file ? m_file->sampleRate() : format.sampleRate;
    else if (item == QLatin1String("bitspersample"))
        value = file ? m_file->bitsPerSample() : format.bitsPerSample;
    else if (item == QLatin1String("channels"))
        value = file ? m_file->channels() : format.channels;
    else if (item == QLatin1String("bytespersec"))
        value = file ? m_file->bytesPerSecond() : format.bytesPerSecond();
    else
        value = file ? m_file->blockAlign() : format.bytesPerFrame();
    reply = QString::number(value);
}
