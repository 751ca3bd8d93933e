#pragma once

#include <QString>
#include <cstdint>

// Names for files brought into the work folder: prefix + "yymmdd_" + the
// millisecond tick + extension. Before taking the tick it waits, letting
// window events run, until the tick differs from the one it used last, so two
// names asked for in quick succession never collide.
class UniqueNamer {
public:
    QString next(const QString& prefix, const QString& extension);
    // The name without the wait: the tick as it is read now.
    static QString immediate(const QString& prefix, const QString& extension);

private:
    std::uint32_t m_lastTick = 0;
};
