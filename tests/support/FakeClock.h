#pragma once

#include "Clock.h"

// A clock that stands still until a test moves it.
class FakeClock : public Clock {
public:
    FakeClock(std::uint32_t tick, QDateTime now) : m_tick(tick), m_now(std::move(now)) {}
    // Every stepEvery-th reading of the tick moves the clock on by one
    // millisecond, as a real one does while a caller waits on it; 0 never moves.
    void setStepEvery(int readings) { m_stepEvery = readings; }
    std::uint32_t tickCount() const override;
    QDateTime now() const override { return m_now; }
    void advance(std::uint32_t ms);
    int readings() const { return m_readings; }

private:
    mutable std::uint32_t m_tick;
    mutable QDateTime m_now;
    int m_stepEvery = 0;
    mutable int m_readings = 0;
};

// Installs a clock for the lifetime of a test scope.
class ScopedClock {
public:
    explicit ScopedClock(Clock& clock) { Clock::install(&clock); }
    ~ScopedClock() { Clock::install(nullptr); }
};
