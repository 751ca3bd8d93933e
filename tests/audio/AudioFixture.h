#pragma once

#include "Mci.h"
#include "PcmSound.h"
#include "ScriptedAudioBackend.h"

#include <QStringList>
#include <QTemporaryDir>
#include <gtest/gtest.h>

// Every sound test runs against the scripted sound card, in a folder of its own.
class AudioFixture : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    QString path(const QString& name) const { return m_dir.filePath(name); }
    static QString dataFile(const QString& name);

    // Runs ffmpeg with "-v error -y" and the arguments; the test is skipped
    // when the tool is not installed.
    bool ffmpeg(const QStringList& arguments) const;
    // Decodes any file through ffmpeg to raw 16-bit PCM at its own rate.
    QByteArray ffmpegDecode(const QString& file, int channels) const;
    QString ffprobe(const QString& file, const QString& entries) const;
    QString mci(const QString& command, int* error = nullptr, int replySize = 512);

    // A sound whose every sample differs from its neighbours, so a cut one
    // frame off shows.
    static PcmSound ramp(const PcmFormat& format, std::int64_t frames);
    static PcmSound tone(int rate, double hz, std::int64_t ms, double amplitude = 12000);
    static void writeBytes(const QString& file, const QByteArray& bytes);
    static QByteArray readBytes(const QString& file);

    QTemporaryDir m_dir;
    ScriptedAudioBackend m_backend;
    Mci m_mci{m_backend};
};

// Normalized cross-correlation of two 16-bit mono signals, best over lags 0..maxLag
// of b behind a.
double bestCorrelation(const QByteArray& a, const QByteArray& b, int maxLag);
