#pragma once

#include "clsMMSManager.h"

#include <QTemporaryDir>

// The message the message benchmarks work on, in a folder of its own: 50
// slides, each with a background photograph, a picture, a drawn text, a
// slide text and a three-second recording.
class BenchMessage {
public:
    BenchMessage();

    static constexpr int kSlides = 50;

    // Runs the program's benchmarks in an application that paints off screen.
    static int runBenchmarks(int argc, char** argv);

    QTemporaryDir home;
    clsMMSManager manager;
    clsMessage* message = nullptr;

private:
    static void fillSlide(clsSlide& slide);
};
