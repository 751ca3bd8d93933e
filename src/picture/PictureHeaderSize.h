#pragma once

#include <QIODevice>
#include <QSize>
#include <optional>

// The size a picture file declares, read from its header, for the formats
// whose decoders in the picture library cannot be asked for the size
// without decoding every pixel. Without it such a file could not be held to
// the picture limits before its pixels are made.
class PictureHeaderSize {
public:
    enum Format {
        SiliconGraphics, // the SGI image format
        DirectDraw,      // DDS textures
        Jpeg2000Stream,  // a bare JPEG 2000 code stream
        Jpeg2000File,    // the JP2 file around one
    };

    // Width and height as the file declares them; nullopt when the header
    // is not one of that format or is cut short.
    static std::optional<QSize> read(QIODevice& file, Format format);

    // Where a JPEG 2000 code stream lies in its file: its first byte and the
    // byte after its last; nullopt when the file holds none.
    struct Extent {
        qint64 start = 0;
        qint64 end = 0;
    };
    static std::optional<Extent> codeStream(QIODevice& file, Format format);
    // True when the code stream ends with its end marker, as a stream cut
    // short does not.
    static bool codeStreamComplete(QIODevice& file, Format format);

private:
    static std::optional<QSize> siliconGraphics(QIODevice& file);
    static std::optional<QSize> directDraw(QIODevice& file);
    static std::optional<QSize> codeStreamSize(QIODevice& file, qint64 start);
    static std::optional<Extent> boxedCodeStream(QIODevice& file);
};
