#pragma once

#include "Clock.h"

// A clock that stands still until a test moves it.
class FakeClock : public Clock {
public:
    FakeClock(std::uint32_t tick, QDateTime now) : m_tick(tick), m_now(std::move(now)) {}
    std::uint32_t tickCount() const override { return m_tick; }
    QDateTime now() const override { return m_now; }
    void advance(std::uint32_t ms);

private:
    std::uint32_t m_tick;
    QDateTime m_now;
};

// Installs a clock for the lifetime of a test scope.
class ScopedClock {
public:
    explicit ScopedClock(Clock& clock) { Clock::install(&clock); }
    ~ScopedClock() { Clock::install(nullptr); }
};
