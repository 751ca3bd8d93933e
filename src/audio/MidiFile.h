#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>

// Our own reader of Standard MIDI Files (formats 0 and 1). It walks every
// event of every track to find where the song ends and turns that tick into
// milliseconds through the tempo map, so tempo changes count.
class MidiFile {
public:
    enum class Error { None, Unreadable, NotMidi, Truncated, Corrupt, Unsupported };

    struct Info {
        int format = 0;
        int tracks = 0;
        std::int64_t endTick = 0;
        std::int64_t lengthMs = 0;
    };

    static Error parse(const QByteArray& bytes, Info& info);
    static Error read(const QString& path, Info& info, QByteArray* bytes = nullptr);
    static QString errorText(Error error);
};
