#pragma once

#include <QString>

class QFile;

// A name read from a file that strangers send (a message, a SMIL set, a
// template) becomes a path only through here. It must be a plain file name,
// and in its folder it must be a regular file reached without a link, so no
// name can make the program read or write anything outside that folder.
class PlainFileName {
public:
    // Why name is no plain file name; "" when it is one.
    static QString refusal(const QString& name);
    static bool isPlain(const QString& name) { return refusal(name).isEmpty(); }

    // folder + name when that is a regular file and no link; otherwise "" with
    // *why saying what is wrong (the name, a link, a missing file).
    static QString existingFile(const QString& folder, const QString& name, QString* why = nullptr);
    // Opens folder + name for reading without following a link, so the file
    // cannot be swapped for a link between a check and the read.
    static bool open(const QString& folder, const QString& name, QFile& file,
                     QString* why = nullptr);
    // Copies folder + name to target, written as AtomicFile writes.
    static bool copy(const QString& folder, const QString& name, const QString& target,
                     QString* why = nullptr);
};
