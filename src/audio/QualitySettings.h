#pragma once

#include "QualityPreset.h"

class clsPropertiesXML;

// The recorder's table of six quality entries kept in the settings section
// "recording": 1 speech and 2 AMR-NB always record the built-in preset, 3 to 6
// come from "Quality_" + n, and the MP3 entries are derived from
// "SamplingRateQuality_" + n and the bit rates of the MP3 codec.
class QualitySettings {
public:
    explicit QualitySettings(clsPropertiesXML& settings) : m_settings(settings) {}

    void InitQualitySetting();
    bool codecInstalled();
    QualityPreset presetForEntry(int entry);

    static constexpr int kEntries = 6;
    static constexpr int kAmrEntry = 2;

private:
    void initMp3Entry(int entry, const QString& rateAndMaximum);

    clsPropertiesXML& m_settings;
};
