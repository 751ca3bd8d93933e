#pragma once

#include <QString>
#include <optional>

// A time value of a presentation's begin, end and dur attributes, in
// milliseconds: "3" and "2.5s" are seconds, "1500ms", "2min" and "1h" say
// their unit, "00:00:03.5" and "0:03" are clock values. Unlike the slide
// durations we import ourselves, fractions of seconds are kept.
class SmilTime {
public:
    // Nothing for an empty, negative or unreadable value, and for "indefinite".
    static std::optional<qint64> parse(const QString& text);
    static bool isIndefinite(const QString& text);

    // Longer values are no presentation a phone plays; refusing them keeps
    // every sum of times far from overflowing.
    static constexpr qint64 kMaxMs = 24LL * 60 * 60 * 1000;
};
