#include "WbmpWriter.h"

#include <algorithm>
#include <vector>

namespace {
// Luminance of every pixel, 0 to 255, row by row.
std::vector<int> greyLevels(const QImage& picture) {
    const QImage rgb = picture.convertToFormat(QImage::Format_RGB888);
    std::vector<int> grey;
    grey.reserve(size_t(rgb.width()) * rgb.height());
    for (int y = 0; y < rgb.height(); ++y) {
        const uchar* p = rgb.constScanLine(y);
        for (int x = 0; x < rgb.width(); ++x, p += 3)
            grey.push_back((299 * p[0] + 587 * p[1] + 114 * p[2] + 500) / 1000);
    }
    return grey;
}

bool orderedWhite(int grey, int x, int y) {
    static const int bayer[8][8] = {
        {0, 32, 8, 40, 2, 34, 10, 42},  {48, 16, 56, 24, 50, 18, 58, 26},
        {12, 44, 4, 36, 14, 46, 6, 38}, {60, 28, 52, 20, 62, 30, 54, 22},
        {3, 35, 11, 43, 1, 33, 9, 41},  {51, 19, 59, 27, 49, 17, 57, 25},
        {15, 47, 7, 39, 13, 45, 5, 37}, {63, 31, 55, 23, 61, 29, 53, 21}};
    // White when grey / 255 lies above (b + 0.5) / 64: all white at 255, all black at 0.
    return 128 * grey > (2 * bayer[y & 7][x & 7] + 1) * 255;
}

// Floyd-Steinberg over the grey levels in place; afterwards each is 0 or 255.
void diffuse(std::vector<int>& grey, int width, int height) {
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            int& pixel = grey[size_t(y) * width + x];
            const int chosen = pixel >= 128 ? 255 : 0;
            const int error = pixel - chosen;
            pixel = chosen;
            const auto add = [&](int dx, int dy, int weight) {
                const int nx = x + dx, ny = y + dy;
                if (nx >= 0 && nx < width && ny < height)
                    grey[size_t(ny) * width + nx] += error * weight / 16;
            };
            add(1, 0, 7);
            add(-1, 1, 3);
            add(0, 1, 5);
            add(1, 1, 1);
        }
    }
}
} // namespace

QByteArray WbmpWriter::multiByteInteger(quint32 value) {
    QByteArray bytes(1, static_cast<char>(value & 0x7F));
    for (value >>= 7; value != 0; value >>= 7)
        bytes.prepend(static_cast<char>(0x80 | (value & 0x7F)));
    return bytes;
}

QByteArray WbmpWriter::encode(const QImage& picture, Raster raster) {
    const int width = picture.width(), height = picture.height();
    std::vector<int> grey = greyLevels(picture);
    if (raster == ErrorDiffusion)
        diffuse(grey, width, height);
    QByteArray out;
    out.append('\0'); // type 0: black and white, no compression
    out.append('\0'); // fixed header
    out.append(multiByteInteger(width));
    out.append(multiByteInteger(height));
    const int rowBytes = (width + 7) / 8;
    for (int y = 0; y < height; ++y) {
        QByteArray row(rowBytes, '\0');
        for (int x = 0; x < width; ++x) {
            const int level = grey[size_t(y) * width + x];
            const bool white = raster == OrderedDither ? orderedWhite(level, x, y) : level >= 128;
            if (white)
                row[x / 8] = static_cast<char>(row[x / 8] | (0x80 >> (x % 8)));
        }
        out.append(row);
    }
    return out;
}
