#include "MciDevice.h"

#include "MciError.h"
#include "MciOptions.h"
#include "NullAudioBackend.h"

MciDevice::~MciDevice() = default;

int MciDevice::fail(int code, const QString& detail) {
    m_errorDetail = detail;
    return code;
}

void MciDevice::update() {
    if (m_mode == Mode::Playing && m_playback && m_playback->finished()) {
        m_playback.reset();
        m_positionMs = m_playToMs;
        m_mode = Mode::Stopped;
    } else if (m_mode == Mode::Recording && m_capture && m_capture->finished()) {
        stopActivity();
    }
}

void MciDevice::stopActivity() {
    if (m_mode == Mode::Playing) {
        m_positionMs = positionMs();
        m_playback.reset();
    } else if (m_mode == Mode::Recording) {
        m_capture->stop();
        finishRecording();
        m_capture.reset();
        m_positionMs = recordedMs();
    }
    m_mode = Mode::Stopped;
}

std::int64_t MciDevice::positionMs() const {
    switch (m_mode) {
    case Mode::Playing:
        return m_playFromMs + m_playback->framesPlayed() * 1000 / m_playRate;
    case Mode::Recording:
        return recordedMs();
    case Mode::Stopped:
        break;
    }
    return m_positionMs;
}

int MciDevice::play(std::optional<std::int64_t> fromMs, std::optional<std::int64_t> toMs) {
    update();
    stopActivity();
    const std::int64_t length = lengthMs();
    // Without "from" a sound plays from its beginning: the program sends a
    // bare "play" only to hear the whole sound, and it has no pause to resume.
    const std::int64_t start = fromMs.value_or(0);
    const std::int64_t end = toMs.value_or(length);
    if (start > length || end > length || end < start)
        return MciError::OutOfRange;

    PcmSound sound;
    if (const int error = playable(sound); error != MciError::None)
        return error;
    if (hasSound()) {
        const PcmSound part = sound.slice(sound.msToFrame(start), sound.msToFrame(end)).toInt16();
        m_playback = m_backend.play(part);
        if (!m_playback)
            return fail(MciError::OutputsUnsuitable, m_backend.name());
        m_playRate = part.format().sampleRate;
    } else {
        m_playback = NullAudioBackend::clockStream(1000, end - start);
        m_playRate = 1000;
    }
    m_playFromMs = start;
    m_playToMs = end;
    m_positionMs = start;
    m_mode = Mode::Playing;
    return MciError::None;
}

int MciDevice::stop() {
    update();
    stopActivity();
    return MciError::None;
}

int MciDevice::record(std::optional<std::int64_t>) {
    return MciError::UnsupportedFunction;
}

int MciDevice::save(const QString&) {
    return MciError::UnsupportedFunction;
}

int MciDevice::set(const MciOptions& options) {
    for (const QString& keyword : options.keywords())
        if (keyword != QLatin1String("time format"))
            return MciError::UnrecognizedKeyword;
    return setTimeFormat(options);
}

// Times are always milliseconds here; other formats are refused rather than misread.
int MciDevice::setTimeFormat(const MciOptions& options) {
    if (!options.has("time format"))
        return MciError::None;
    const QString format = options.value("time format").toLower();
    if (format != QLatin1String("ms") && format != QLatin1String("milliseconds"))
        return MciError::BadTimeFormat;
    return MciError::None;
}

int MciDevice::status(const QString& item, QString& reply) {
    update();
    if (item == QLatin1String("mode")) {
        static const char* const names[] = {"stopped", "playing", "recording"};
        reply = QString::fromLatin1(names[static_cast<int>(m_mode)]);
    } else if (item == QLatin1String("length")) {
        reply = QString::number(m_mode == Mode::Recording ? recordedMs() : lengthMs());
    } else if (item == QLatin1String("position")) {
        reply = QString::number(positionMs());
    } else {
        return MciError::UnrecognizedKeyword;
    }
    return MciError::None;
}
