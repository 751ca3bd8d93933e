// Times the sound work a user waits for: converting a minute of speech to AMR
// and back, finding an MP3's exact length (and decoding it), and trimming a WAV. The inputs are
// written to the temp folder first; ffmpeg on the same files is the yardstick
// (see the command printed at start).
#include "AmrConverter.h"
#include "FfmpegDecoder.h"
#include "Mp3Encoder.h"
#include "WavFile.h"
#include "WavTrimmer.h"

#include <QDir>
#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdio>

namespace {
QString file(const QString& name) {
    return QDir::temp().filePath("vellumo_bench_" + name);
}

PcmSound speech(int seconds) {
    QByteArray data(8000 * seconds * 2, Qt::Uninitialized);
    auto* out = reinterpret_cast<std::int16_t*>(data.data());
    for (int i = 0; i < 8000 * seconds; ++i)
        out[i] = std::int16_t(9000 * std::sin(i * 0.15) * (0.6 + 0.4 * std::sin(i * 0.002)));
    return PcmSound({8000, 1, 16}, data);
}

void prepare() {
    static bool done = false;
    if (done)
        return;
    done = true;
    const PcmSound minute = speech(60);
    WavFile::write(file("speech.wav"), minute);
    AmrConverter::wav2amr(file("speech.wav"), file("speech.amr"));
    QString error;
    Mp3Encoder::encodeFile(file("speech.wav"), file("speech.mp3"), 4000, error);
    std::printf("inputs: %s .amr .mp3; compare: ffmpeg -i IN -c:a libopencore_amrnb -b:a 12.2k "
                "OUT.amr, ffmpeg -i IN.amr OUT.wav, ffmpeg -i IN.mp3 -f null -\n",
                qPrintable(file("speech.wav")));
}

void BM_Wav2Amr(benchmark::State& state) {
    prepare();
    for (auto _ : state)
        benchmark::DoNotOptimize(AmrConverter::wav2amr(file("speech.wav"), file("out.amr")));
}
BENCHMARK(BM_Wav2Amr)->Unit(benchmark::kMillisecond);

void BM_Amr2Wav(benchmark::State& state) {
    prepare();
    for (auto _ : state)
        benchmark::DoNotOptimize(AmrConverter::amr2wav(file("speech.amr"), file("out.wav")));
}
BENCHMARK(BM_Amr2Wav)->Unit(benchmark::kMillisecond);

// Measuring reads the packets; decoding is what playing costs.
void BM_Mp3ExactLength(benchmark::State& state) {
    prepare();
    for (auto _ : state) {
        std::int64_t lengthMs = 0;
        QString error;
        FfmpegDecoder::audioLengthMs(file("speech.mp3"), lengthMs, error);
        benchmark::DoNotOptimize(lengthMs);
    }
}
BENCHMARK(BM_Mp3ExactLength)->Unit(benchmark::kMillisecond);

void BM_Mp3Decode(benchmark::State& state) {
    prepare();
    for (auto _ : state) {
        PcmSound sound;
        QString error;
        FfmpegDecoder::decodeAudio(file("speech.mp3"), sound, error);
        benchmark::DoNotOptimize(sound.lengthMs());
    }
}
BENCHMARK(BM_Mp3Decode)->Unit(benchmark::kMillisecond);

void BM_TrimWav(benchmark::State& state) {
    prepare();
    for (auto _ : state)
        benchmark::DoNotOptimize(
            WavTrimmer::trim(file("speech.wav"), file("cut.wav"), 1000, 59000));
}
BENCHMARK(BM_TrimWav)->Unit(benchmark::kMillisecond);
} // namespace

BENCHMARK_MAIN();
