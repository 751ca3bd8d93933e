#pragma once

#include <QString>

class clsMMSManager;

// How a sound file becomes a slide's sound, the same for the window and
// for scripts: it goes into the work folder under a fresh name (an 8 kHz
// 16-bit mono WAV as AMR while the preferences ask for it,
// "ConvertWavToAmr"; a ".midi" as ".mid"), and the slide lasts as long as
// the sound when its length is known.
class SoundIntake {
public:
    // What the media commands tell of a sound: its kind is the extension in
    // capitals, "---" without one; a length of -1 was not read.
    struct Info {
        QString kind;
        qint64 length = -1;
        QString samplesPerSecond;
        QString bitsPerSample;
    };

    explicit SoundIntake(clsMMSManager& manager) : m_manager(manager) {}

    static Info measure(const QString& path);
    // Whether the sound is of a kind phones play and was read well enough to
    // be taken without asking. An AMR is measured only once it is in the work folder.
    static bool understood(const Info& info);
    // Whether this file is one the AMR encoder takes and the user wants
    // turned into AMR: an 8000 Hz 16-bit mono WAV with sound in it.
    static bool convertsToAmr(const QString& path);

    // The file's name in the work folder, "" when it could not be copied.
    // A WAV is measured again there, as the file the message will hold.
    QString bringIn(const QString& source, Info& info, QString* why = nullptr);
    // The sound's length for the slide; an AMR is measured by decoding it.
    qint64 lengthOf(const QString& name, const Info& info);

private:
    static bool cutShort(const QString& path);
    static QString workExtension(const QString& fileName, const Info& info);
    QString convertToAmr(const QString& source);
    QString copyIn(const QString& source, const QString& extension, QString* why);

    clsMMSManager& m_manager;
};
