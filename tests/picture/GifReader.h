#pragma once

#include <QByteArray>
#include <QList>
#include <QRgb>
#include <QString>
#include <vector>

// An independent reader of the GIFs we write, strict about the parts other
// decoders forgive: it keeps the raw blocks and watches the LZW code stream.
struct GifExtension {
    int label = 0;
    QByteArray header; // the first block (graphic control, plain text)
    QByteArray data;   // the data sub-blocks joined
};

struct GifFile {
    QString error; // empty when the file read cleanly
    int width = 0;
    int height = 0;
    int packed = 0;
    QList<QRgb> colourTable;
    std::vector<GifExtension> extensions;
    int imagePacked = 0;
    int minimumCodeSize = 0;
    std::vector<int> blockSizes;      // the image data sub-blocks, terminator excluded
    std::vector<std::uint8_t> pixels; // row-major, top to bottom, de-interlaced
    // What the code stream did.
    int widestCode = 0;
    int clearCodes = 0;
    int clearsWithFullTable = 0; // clear codes met when the next free code was 511
    bool trailerFollowsTerminator = false;
};

GifFile readGif(const QByteArray& bytes);
