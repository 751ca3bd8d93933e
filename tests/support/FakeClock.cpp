#include "FakeClock.h"

void FakeClock::advance(std::uint32_t ms) {
    m_tick += ms;
    m_now = m_now.addMSecs(ms);
}
