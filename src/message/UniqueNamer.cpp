#include "UniqueNamer.h"

#include "Clock.h"
#include "EventPump.h"

namespace {
QString compose(const QString& prefix, std::uint32_t tick, const QString& extension) {
    const QString date = Clock::instance().now().toString(QStringLiteral("yyMMdd_"));
    return prefix + date + QString::number(tick) + extension;
}
} // namespace

QString UniqueNamer::next(const QString& prefix, const QString& extension) {
    std::uint32_t tick = Clock::instance().tickCount();
    while (tick == m_lastTick) {
        pumpEvents();
        tick = Clock::instance().tickCount();
    }
    m_lastTick = tick;
    return compose(prefix, tick, extension);
}

QString UniqueNamer::immediate(const QString& prefix, const QString& extension) {
    return compose(prefix, Clock::instance().tickCount(), extension);
}
