#include "BenchMessage.h"

#include <QFile>
#include <QGuiApplication>
#include <QImage>
#include <QRandomGenerator>
#include <benchmark/benchmark.h>
#include <cmath>

namespace {
// A recording in the program's own format: 8000 Hz 16-bit mono WAV.
QByteArray recording(int ms) {
    QByteArray pcm;
    for (int i = 0; i < 8 * ms; ++i) {
        const auto value = qint16(6000 * std::sin(i * 0.11) + 3000 * std::sin(i * 0.031));
        pcm.append(char(value & 0xFF)).append(char((value >> 8) & 0xFF));
    }
    auto le32 = [](quint32 v) { return QByteArray(reinterpret_cast<const char*>(&v), 4); };
    return "RIFF" + le32(36 + pcm.size()) + "WAVEfmt " + le32(16) +
           QByteArray::fromHex("01000100401f0000803e000002001000") + "data" + le32(pcm.size()) +
           pcm;
}

// Something like a photograph: smooth colour with noise, which JPEG finds hard.
QImage photograph(QSize size) {
    QImage picture(size, QImage::Format_RGB32);
    auto* random = QRandomGenerator::global();
    for (int y = 0; y < size.height(); ++y)
        for (int x = 0; x < size.width(); ++x)
            picture.setPixel(x, y,
                             qRgb((x * 255 / size.width() + random->bounded(24)) & 0xFF,
                                  (y * 255 / size.height() + random->bounded(24)) & 0xFF,
                                  (128 + random->bounded(48)) & 0xFF));
    return picture;
}
} // namespace

BenchMessage::BenchMessage() {
    qputenv("XDG_DATA_HOME", home.path().toLocal8Bit());
    manager.InitializeAt(home.path() + "/work", home.path() + "/archive", "message.xml");
    message = manager.CreateMsg();
    const QString work = manager.GetWorkFolderPath();
    photograph(QSize(176, 144)).save(work + "B.jpg", "JPEG", 90);
    photograph(QSize(64, 64)).save(work + "I.png");
    QFile sound(work + "A.wav");
    sound.open(QIODevice::WriteOnly);
    sound.write(recording(3000));
    sound.close();
    for (int i = 0; i < kSlides; ++i)
        fillSlide(message->Slides().Add());
}

void BenchMessage::fillSlide(clsSlide& slide) {
    slide.setDuration(3000);
    slide.DrawObjects().setBackType(1);
    slide.DrawObjects().setBackPicture("B.jpg");
    slide.DrawObjects().Add().SetAllPproperties(
        DrawObjectProperties::forImage("I.png", QRect(10, 10, 64, 64)));
    DrawObjectProperties text =
        DrawObjectProperties::forText("Greetings from the seaside", QRect(0, 90, 160, 30));
    text.fontName = "DejaVu Sans";
    text.fontSize = 12;
    slide.DrawObjects().Add().SetAllPproperties(text);
    slide.setSound("A.wav");
    slide.setText("A line of text for the slide");
}

int BenchMessage::runBenchmarks(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
