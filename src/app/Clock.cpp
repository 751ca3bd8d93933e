#include "Clock.h"

#include "SystemClock.h"

namespace {
Clock* installedClock = nullptr;
}

Clock& Clock::instance() {
    static SystemClock systemClock;
    return installedClock ? *installedClock : systemClock;
}

void Clock::install(Clock* clock) {
    installedClock = clock;
}
