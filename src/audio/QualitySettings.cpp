#include "QualitySettings.h"

#include "Mp3Encoder.h"
#include "clsPropertiesXML.h"

namespace {
const QString kSection = QStringLiteral("recording");
QString qualityKey(int entry) {
    return QStringLiteral("Quality_%1").arg(entry);
}
} // namespace

bool QualitySettings::codecInstalled() {
    return m_settings.GetProp(kSection, "CodecName", Mp3Encoder::codecName()) ==
           Mp3Encoder::codecName();
}

void QualitySettings::InitQualitySetting() {
    const bool installed = codecInstalled();
    m_settings.SetProp(kSection, "CodecInstalled", installed ? "1" : "0");
    if (installed) {
        for (int entry = 1; entry <= kEntries; ++entry) {
            const QString rateAndMaximum = m_settings.GetProp(
                kSection, QStringLiteral("SamplingRateQuality_%1").arg(entry), QString());
            if (!rateAndMaximum.isEmpty())
                initMp3Entry(entry, rateAndMaximum);
        }
    }
    if (m_settings.GetProp(kSection, qualityKey(kEntries), QString()).isEmpty())
        m_settings.SetProp(kSection, qualityKey(kEntries), QualityPreset::builtIn().toString());
}

// The codec's stereo format at that rate with the most bytes per second not above the maximum.
void QualitySettings::initMp3Entry(int entry, const QString& rateAndMaximum) {
    const int rate = rateAndMaximum.section(';', 0, 0).toInt();
    const int maximum = rateAndMaximum.section(';', 1, 1).toInt();
    int best = 0;
    for (int kbps : Mp3Encoder::bitratesKbps(rate)) {
        const int bytesPerSec = kbps * 1000 / 8;
        if (bytesPerSec <= maximum && bytesPerSec > best)
            best = bytesPerSec;
    }
    const QualityPreset preset{best > 0, rate, best, 2, 16};
    m_settings.SetProp(kSection, qualityKey(entry), preset.toString());
}

QualityPreset QualitySettings::presetForEntry(int entry) {
    if (entry <= kAmrEntry || entry > kEntries || !codecInstalled())
        return QualityPreset::builtIn();
    return QualityPreset::parse(
        m_settings.GetProp(kSection, qualityKey(entry), QualityPreset::builtIn().toString()));
}
