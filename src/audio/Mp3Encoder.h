#pragma once

#include "PcmSound.h"

#include <QList>
#include <QString>

// The MP3 compression codec of the recorder, on lame.
class Mp3Encoder {
public:
    // The name under which the recorder's settings look for this codec.
    static QString codecName() { return QStringLiteral("MPEG Layer-3"); }
    // The constant bit rates (kbit/s) the encoder offers at a sample rate;
    // empty when MP3 has no such rate.
    static QList<int> bitratesKbps(int sampleRate);

    static bool encode(const PcmSound& sound, int kbps, QByteArray& mp3, QString& error);
    // Compresses a WAV file at the bit rate nearest below bytesPerSecond.
    static bool encodeFile(const QString& wavPath, const QString& mp3Path, int bytesPerSecond,
                           QString& error);
};
