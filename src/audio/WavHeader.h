#pragma once

#include "PcmSound.h"

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <optional>

class QIODevice;

// What the chunks of a RIFF WAVE file say about the sound it holds, read
// without its samples: a recording of an hour is measured as fast as one of
// a second. Every layout a WAV can carry is described (any bit depth and
// channel count, float, A-law, mu-law, ADPCM, the extensible form); which of
// them the program can play or cut is for the caller to decide.
class WavHeader {
public:
    enum class Error { None, Unreadable, NotWave, Compressed, Unsupported, NoData };
    enum Tag : quint16 {
        Pcm = 1,
        MsAdpcm = 2,
        Float = 3,
        ALaw = 6,
        MuLaw = 7,
        ImaAdpcm = 0x11,
        Extensible = 0xFFFE
    };

    // Walks the chunks from the device's start up to the data chunk. A data
    // chunk that claims more than the file holds is taken as far as it goes.
    Error read(QIODevice& device);
    Error read(const QString& path);

    quint16 tag() const { return m_tag; }
    int channels() const { return m_channels; }
    int sampleRate() const { return m_sampleRate; }
    int bitsPerSample() const { return m_bitsPerSample; }
    int blockAlign() const { return m_blockAlign; }
    quint32 bytesPerSecond() const { return m_bytesPerSecond; }
    qint64 dataOffset() const { return m_dataOffset; }
    qint64 dataSize() const { return m_dataSize; }
    // The fmt chunk's body as the file holds it, for a copy in the same layout.
    const QByteArray& fmtBody() const { return m_fmt; }

    // 8- or 16-bit integer samples, one or two channels: what plays as it is.
    bool isPlainPcm() const;
    // Every frame takes blockAlign bytes, so a frame can be cut out by its
    // offset: integer PCM, float, A-law and mu-law, but no ADPCM.
    bool hasWholeFrames() const;
    std::int64_t frames() const;
    std::int64_t lengthMs() const;
    // The layout as PCM takes it, for a file that isPlainPcm().
    PcmFormat pcmFormat() const;
    // The coding's usual name, for telling the user why a file is refused.
    QString codingName() const;

    static QString errorText(Error error, const WavHeader* header = nullptr);

private:
    Error readFmt(const QByteArray& body);
    qint64 frameBytes() const;

    quint16 m_tag = 0;
    int m_channels = 0;
    int m_sampleRate = 0;
    int m_bitsPerSample = 0;
    int m_blockAlign = 0;
    quint32 m_bytesPerSecond = 0;
    qint64 m_dataOffset = 0;
    qint64 m_dataSize = 0;
    std::optional<std::int64_t> m_factFrames;
    QByteArray m_fmt;
};
