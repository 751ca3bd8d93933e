#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>

// The play length of an animated GIF: the sum of its frame delays.
class GifAnimation {
public:
    struct Info {
        int frames = 0;
        std::int64_t lengthMs = 0;
    };

    // False when the data is not a GIF or holds no complete frame. A file cut
    // short counts the frames that are whole.
    static bool parse(const QByteArray& bytes, Info& info);
    static bool read(const QString& path, Info& info);

    // Viewers show a frame that asks for no delay for a tenth of a second.
    static constexpr int kZeroDelayMs = 100;
};
