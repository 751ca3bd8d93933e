#pragma once

#include <QString>

class ClassGuard;
class MessageDocument;
class clsMMSManager;
class QWidget;

// Gives the current slide a sound, the way a sound dropped on the picture
// editor, chosen in the sound browser or recorded is given: the file goes into
// the work folder under a fresh name (an 8 kHz 16-bit WAV as AMR when the
// preferences ask for it, "ConvertWavToAmr"), the slide takes its name and,
// when its length is known, lasts as long as the sound. A file whose kind or
// length cannot be told is attached only when the user says so. The whole is
// one step of the document's history. A guard, when given, holds the sound to
// the chosen content class.
class SoundAttacher {
public:
    SoundAttacher(MessageDocument& document, QWidget* parent, ClassGuard* guard = nullptr);

    // False when nothing changed: no folder or name, a missing file (said in
    // a box), a refused sound or a copy that failed.
    bool attach(const QString& folder, const QString& fileName);

private:
    // What modPlaySound tells of a sound: its kind is the extension in
    // capitals, "---" without one; a length of -1 was not read.
    struct SoundInfo {
        QString kind;
        qint64 length = -1;
        QString samplesPerSecond;
        QString bitsPerSample;
    };
    static SoundInfo readInfo(const QString& path);
    static bool cutShort(const QString& path);
    static bool convertsToAmr(const SoundInfo& info);
    static bool understood(const SoundInfo& info);
    static QString workExtension(const QString& fileName, const SoundInfo& info);

    QString bringInWav(const QString& source, SoundInfo& info);
    QString convertToAmr(const QString& source);
    QString copyIn(const QString& source, const QString& extension);
    QString workPath(const QString& name) const;
    qint64 lengthOf(const QString& name, const SoundInfo& info);
    bool admitted(QString& name, const QString& fileName, SoundInfo& info);
    bool fitted(QString& name, SoundInfo& info);
    bool askToAttach(const QString& source) const;
    void reportMissing() const;
    bool store(const QString& name, const QString& soundName, qint64 length);
    clsMMSManager& manager() const;

    MessageDocument& m_document;
    QWidget* m_parent;
    ClassGuard* m_guard;
};
