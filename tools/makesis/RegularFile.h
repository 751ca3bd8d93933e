#pragma once

#include <QFile>
#include <QString>

// Opens a file the builder reads, a package definition or a source, only
// when it is a regular file. A device never ends and a pipe waits for a
// writer: reading either would fill the memory or hold the builder for ever.
// The check is made on the opened file, so nothing swapped in between a
// check and the open gets read, and opening never waits for a writer.
class RegularFile {
public:
    // False, with why saying so, when path cannot be opened or is no
    // regular file; file is then closed.
    static bool open(const QString& path, QFile& file, QString& why);
};
