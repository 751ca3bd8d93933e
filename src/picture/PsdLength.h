#pragma once

#include <QIODevice>
#include <optional>

// How many bytes a layered-picture file (signature "8BPS") must have to
// hold the whole picture its header and section lengths describe. The
// decoder trusts these lengths and runs past its buffers on a file cut off
// inside run-length data, so a short file is refused before it gets there.
class PsdLength {
public:
    // The length a complete file has, or at least needs when its picture
    // data is compressed in a way whose length the file does not tell;
    // nullopt for a file that is not laid out in this format. A file too
    // short to hold its own sections gives a length beyond its end.
    static std::optional<qint64> required(QIODevice& file);

private:
    static std::optional<quint64> bigEndian(QIODevice& file, int bytes);
    static qint64 runLengthEnd(QIODevice& file, qint64 rows, int countBytes);
};
