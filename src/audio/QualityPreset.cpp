#include "QualityPreset.h"

#include <QStringList>

QualityPreset QualityPreset::parse(const QString& text) {
    const QStringList fields = text.split(';');
    if (fields.size() != 5)
        return builtIn();
    int values[5];
    for (int i = 0; i < 5; ++i) {
        bool ok = false;
        values[i] = fields[i].trimmed().toInt(&ok);
        if (!ok)
            return builtIn();
    }
    QualityPreset preset{values[0] == 1, values[1], values[2], values[3], values[4]};
    if (preset.samplesPerSec <= 0 || preset.channels < 1 || preset.channels > 2 ||
        (preset.bitsPerSample != 8 && preset.bitsPerSample != 16))
        return builtIn();
    return preset;
}

QString QualityPreset::toString() const {
    return QStringLiteral("%1;%2;%3;%4;%5")
        .arg(available ? 1 : 0)
        .arg(samplesPerSec)
        .arg(targetBytesPerSec)
        .arg(channels)
        .arg(bitsPerSample);
}

QString QualityPreset::setCommand(const QString& alias) const {
    return QStringLiteral("set %1 time format ms alignment %2 channels %3 bitspersample %4 "
                          "samplespersec %5 bytespersec %6")
        .arg(alias)
        .arg(blockAlign())
        .arg(channels)
        .arg(bitsPerSample)
        .arg(samplesPerSec)
        .arg(bytesPerSec());
}
