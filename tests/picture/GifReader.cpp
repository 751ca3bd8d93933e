#include "GifReader.h"

#include <stdexcept>

namespace {
class Input {
public:
    explicit Input(const QByteArray& bytes) : m_bytes(bytes) {}
    int byte() {
        if (m_at >= m_bytes.size())
            throw std::runtime_error("unexpected end of file");
        return static_cast<std::uint8_t>(m_bytes[m_at++]);
    }
    int word() {
        const int low = byte();
        return low | (byte() << 8);
    }
    QByteArray take(int count) {
        if (m_at + count > m_bytes.size())
            throw std::runtime_error("unexpected end of file");
        m_at += count;
        return m_bytes.mid(m_at - count, count);
    }
    QByteArray subBlocks(std::vector<int>* sizes = nullptr) {
        QByteArray data;
        for (int size = byte(); size != 0; size = byte()) {
            data += take(size);
            if (sizes)
                sizes->push_back(size);
        }
        return data;
    }

private:
    const QByteArray& m_bytes;
    qsizetype m_at = 0;
};

// Reads codes least significant bit first, the way a GIF decoder must.
class CodeReader {
public:
    explicit CodeReader(const QByteArray& data) : m_data(data) {}
    int code(int width) {
        int value = 0;
        for (int bit = 0; bit < width; ++bit, ++m_bit) {
            if (m_bit / 8 >= m_data.size())
                throw std::runtime_error("code stream ends without an end code");
            value |= ((static_cast<std::uint8_t>(m_data[m_bit / 8]) >> (m_bit % 8)) & 1) << bit;
        }
        return value;
    }

private:
    const QByteArray& m_data;
    qsizetype m_bit = 0;
};

void decodeImage(GifFile& gif, const QByteArray& data) {
    const int clear = 1 << gif.minimumCodeSize, end = clear + 1;
    std::vector<std::vector<std::uint8_t>> table;
    int width = 0;
    const auto reset = [&] {
        table.assign(clear + 2, {});
        for (int i = 0; i < clear; ++i)
            table[i] = {static_cast<std::uint8_t>(i)};
        width = gif.minimumCodeSize + 1;
    };
    reset();
    CodeReader reader(data);
    std::vector<std::uint8_t> previous;
    std::vector<std::uint8_t> stream;
    for (;;) {
        const int code = reader.code(width);
        gif.widestCode = std::max(gif.widestCode, width);
        if (code == end)
            break;
        if (code == clear) {
            ++gif.clearCodes;
            if (table.size() == 511)
                ++gif.clearsWithFullTable;
            reset();
            previous.clear();
            continue;
        }
        std::vector<std::uint8_t> entry;
        if (code < static_cast<int>(table.size()) && (code >= clear + 2 || code < clear))
            entry = table[code];
        else if (code == static_cast<int>(table.size()) && !previous.empty())
            entry = previous, entry.push_back(previous[0]);
        else
            throw std::runtime_error("code " + std::to_string(code) + " not in the table");
        if (!previous.empty()) {
            if (table.size() == 511)
                throw std::runtime_error("the table grew past 511 without a clear code");
            auto added = previous;
            added.push_back(entry[0]);
            table.push_back(added);
            if (static_cast<int>(table.size()) == (1 << width) && width < 12)
                ++width;
        }
        stream.insert(stream.end(), entry.begin(), entry.end());
        previous = entry;
    }
    if (stream.size() != size_t(gif.width) * gif.height)
        throw std::runtime_error("pixel count " + std::to_string(stream.size()) + " differs");
    // Put the rows back in picture order.
    std::vector<int> order;
    if (gif.imagePacked & 0x40) {
        const int starts[] = {0, 4, 2, 1}, steps[] = {8, 8, 4, 2};
        for (int pass = 0; pass < 4; ++pass)
            for (int y = starts[pass]; y < gif.height; y += steps[pass])
                order.push_back(y);
    } else {
        for (int y = 0; y < gif.height; ++y)
            order.push_back(y);
    }
    gif.pixels.assign(stream.size(), 0);
    for (int i = 0; i < gif.height; ++i)
        std::copy_n(stream.begin() + size_t(i) * gif.width, gif.width,
                    gif.pixels.begin() + size_t(order[i]) * gif.width);
}

void readBody(GifFile& gif, Input& in) {
    if (in.take(6) != "GIF89a")
        throw std::runtime_error("not a GIF89a file");
    gif.width = in.word();
    gif.height = in.word();
    gif.packed = in.byte();
    in.byte();
    in.byte();
    if (gif.packed & 0x80)
        for (int i = 0; i < (1 << ((gif.packed & 7) + 1)); ++i) {
            const int r = in.byte(), g = in.byte();
            gif.colourTable.append(qRgb(r, g, in.byte()));
        }
    int introducer = in.byte();
    while (introducer == 0x21) {
        GifExtension extension;
        extension.label = in.byte();
        if (extension.label == 0xF9 || extension.label == 0x01)
            extension.header = in.take(in.byte());
        extension.data = in.subBlocks();
        gif.extensions.push_back(extension);
        introducer = in.byte();
    }
    if (introducer != 0x2C)
        throw std::runtime_error("no image descriptor");
    if (in.word() != 0 || in.word() != 0 || in.word() != gif.width || in.word() != gif.height)
        throw std::runtime_error("image descriptor does not cover the screen");
    gif.imagePacked = in.byte();
    gif.minimumCodeSize = in.byte();
    const QByteArray data = in.subBlocks(&gif.blockSizes);
    gif.trailerFollowsTerminator = in.byte() == 0x3B;
    decodeImage(gif, data);
}
} // namespace

GifFile readGif(const QByteArray& bytes) {
    GifFile gif;
    Input in(bytes);
    try {
        readBody(gif, in);
    } catch (const std::exception& error) {
        gif.error = QString::fromStdString(error.what());
    }
    return gif;
}
