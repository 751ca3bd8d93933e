#pragma once

#include <QByteArray>
#include <QSize>
#include <QString>

// What a part of a message is, told from its bytes alone: a name can lie, and
// a phone decides by what it receives. Also the facts the content classes ask
// about: a picture's resolution, a sound's length, whether the file is whole.
class MediaFormat {
public:
    enum Kind {
        Empty,
        Unknown,
        TextAscii,
        TextUtf8,
        TextUtf16,
        TextEightBit, // neither ASCII nor UTF-8: some single-byte code page
        Smil,
        JpegBaseline,
        JpegExtended,
        JpegProgressive,
        JpegOther, // lossless, arithmetic-coded or hierarchical
        Gif87a,
        Gif89a,
        Png,
        Wbmp,
        Bmp,
        AmrNb,
        AmrWb,
        SpMidi,
        Midi, // a Standard MIDI File without the scalable-polyphony message
        Mp3,
        Wav,
        Video3gpp,
        VideoMp4,
    };

    struct Facts {
        Kind kind = Unknown;
        QSize resolution;       // pictures; invalid for everything else
        qint64 durationMs = -1; // sounds; -1 when not known
        bool truncated = false; // the file ends before its own structure does
    };

    static Facts identify(const QByteArray& bytes);
    // A short English name of the kind ("baseline JPEG", "PNG").
    static QString kindName(Kind kind);
    // The kind a file name promises by its extension, Unknown when it
    // promises nothing this program knows.
    static Kind promisedBy(const QString& fileName);
    // The extension a file of kind is written with (".jpg"); "" for a kind
    // without one.
    static QString extensionFor(Kind kind);
    // Whether a part named fileName holding kind is what the name says: the
    // receiver is told the type its name implies.
    static bool matchesName(Kind kind, const QString& fileName);
};
