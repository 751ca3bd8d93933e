#pragma once

#include "Clock.h"

class SystemClock : public Clock {
public:
    std::uint32_t tickCount() const override;
    QDateTime now() const override;
};
