#pragma once

#include <QIODevice>
#include <optional>

// How many bytes a picture file must have to hold the whole picture its
// header describes, for the formats whose decoders in the picture library
// read past the end of a cut-off file without noticing: they fill the
// missing rows with whatever their buffers held, and the layered format's
// decoder runs past its buffers on run-length data cut short. A short file
// is refused before it gets there.
class PictureLength {
public:
    enum Format { Layered, Targa, Pcx };

    // The length a complete file has, or at least needs where the file
    // does not tell; nullopt for a file that is not laid out in that
    // format. A file too short for its own headers or runs gives a length
    // beyond its end.
    static std::optional<qint64> required(QIODevice& file, Format format);

private:
    static std::optional<qint64> layered(QIODevice& file);
    static std::optional<qint64> targa(QIODevice& file);
    static std::optional<qint64> pcx(QIODevice& file);
    static qint64 layeredRunsEnd(QIODevice& file, qint64 rows, int countBytes);
};
