#include "SystemClock.h"

#include <chrono>

std::uint32_t SystemClock::tickCount() const {
    // The steady clock counts from the system start here, as a tick counter does.
    const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(
        std::chrono::steady_clock::now().time_since_epoch());
    return static_cast<std::uint32_t>(ms.count());
}

QDateTime SystemClock::now() const {
    return QDateTime::currentDateTime();
}
