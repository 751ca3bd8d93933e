#pragma once

#include <QString>

class QMimeData;

// What a file dragged onto the slide picture is. The test is deliberately
// loose: the file's lower-case extension only has to occur somewhere in the
// joined list of known extensions, so ".jp" passes as a picture and a name
// without any extension counts as one (and is refused later if it does not
// decode).
class DroppedMedia {
public:
    enum Kind { Unknown, Picture, Sound, Folder };

    // The extension with its dot, from the last "." of the file's name; ""
    // without one. A dot in a folder's name is no extension.
    static QString extensionOf(const QString& path);
    static Kind kindOf(const QString& path);
    // The file a drag carries: the first local file of its URLs, or the
    // first ";"-separated field of its text.
    static QString pathFrom(const QMimeData& data);
};
