#pragma once

#include <QSaveFile>
#include <QString>

class QIODevice;

// Every file the program writes goes through here: the content goes to a
// temporary file beside the target and replaces it only when complete, so a
// failed write (a full disk, a file size limit) leaves the old file as it was.
// A target that exists but is no regular file (a FIFO, a device, a folder) is
// refused instead of being replaced: a user who names one meant something else,
// and "success" with the FIFO gone would be a lie. A link to a regular file is
// written through to that file.
class AtomicFile : public QSaveFile {
public:
    explicit AtomicFile(const QString& path);

    // Refuses a target that is no regular file, with errorString() saying why.
    bool open(OpenMode mode) override;

    // Why path cannot be written as a file; "" when it can.
    static QString targetRefusal(const QString& path);
    // Writes bytes to path; false with *why filled when it could not.
    static bool writeFile(const QString& path, const QByteArray& bytes, QString* why = nullptr);
    // Copies what source has left to read to path, piece by piece.
    static bool copyFile(QIODevice& source, const QString& path, QString* why = nullptr);
};
