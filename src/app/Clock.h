#pragma once

#include <QDateTime>
#include <cstdint>

// The millisecond tick counter and the wall clock. Unique file names are built
// from both, so tests install a clock they can step.
class Clock {
public:
    virtual ~Clock() = default;

    // Milliseconds of a monotonic clock, wrapping at 32 bits like a tick counter.
    virtual std::uint32_t tickCount() const = 0;
    virtual QDateTime now() const = 0;

    // The clock the program uses; a system clock unless one was installed.
    static Clock& instance();
    // Installs a clock (not owned); nullptr returns to the system clock.
    static void install(Clock* clock);
};
