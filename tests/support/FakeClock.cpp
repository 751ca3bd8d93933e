#include "FakeClock.h"

void FakeClock::advance(std::uint32_t ms) {
    m_tick += ms;
    m_now = m_now.addMSecs(ms);
}

std::uint32_t FakeClock::tickCount() const {
    ++m_readings;
    if (m_stepEvery > 0 && m_readings % m_stepEvery == 0) {
        ++m_tick;
        m_now = m_now.addMSecs(1);
    }
    return m_tick;
}
