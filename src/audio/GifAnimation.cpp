#include "GifAnimation.h"

#include <QFile>

namespace {
struct Reader {
    const QByteArray& bytes;
    qsizetype pos = 0;

    bool has(qsizetype n) const { return n >= 0 && bytes.size() - pos >= n; }
    int byte(qsizetype at) const { return static_cast<unsigned char>(bytes[at]); }
    int next() { return byte(pos++); }
    // Skips a chain of data sub-blocks up to and including the empty one.
    bool skipSubBlocks() {
        while (has(1)) {
            const int size = next();
            if (size == 0)
                return true;
            if (!has(size))
                return false;
            pos += size;
        }
        return false;
    }
    bool skipColorTable(int flags) {
        if (!(flags & 0x80))
            return true;
        const qsizetype size = 3 * (qsizetype(1) << ((flags & 7) + 1));
        if (!has(size))
            return false;
        pos += size;
        return true;
    }
};
} // namespace

bool GifAnimation::parse(const QByteArray& bytes, Info& info) {
    info = Info{};
    if (!bytes.startsWith("GIF87a") && !bytes.startsWith("GIF89a"))
        return false;
    Reader r{bytes, 6};
    if (!r.has(7))
        return false;
    const int screenFlags = r.byte(10);
    r.pos += 7;
    if (!r.skipColorTable(screenFlags))
        return false;
    int delayCs = 0;
    while (r.has(1)) {
        const int block = r.next();
        if (block == 0x3B)
            break;
        if (block == 0x21) {
            if (!r.has(1))
                break;
            const int label = r.next();
            if (label == 0xF9 && r.has(5) && r.byte(r.pos) >= 4)
                delayCs = r.byte(r.pos + 2) | (r.byte(r.pos + 3) << 8);
            if (!r.skipSubBlocks())
                break;
        } else if (block == 0x2C) {
            if (!r.has(9))
                break;
            const int imageFlags = r.byte(r.pos + 8);
            r.pos += 9;
            if (!r.skipColorTable(imageFlags) || !r.has(1))
                break;
            ++r.pos; // LZW minimum code size
            if (!r.skipSubBlocks())
                break;
            ++info.frames;
            info.lengthMs += delayCs > 0 ? delayCs * 10 : kZeroDelayMs;
            delayCs = 0;
        } else {
            break; // not a block a GIF may hold: the rest is unreadable
        }
    }
    return info.frames > 0;
}

bool GifAnimation::read(const QString& path, Info& info) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) && parse(file.readAll(), info);
}
