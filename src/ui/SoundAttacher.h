#pragma once

#include "SoundIntake.h"

#include <QString>

class ClassGuard;
class MessageDocument;
class clsMMSManager;
class QWidget;

// Gives the current slide a sound, the way a sound dropped on the picture
// editor, chosen in the sound browser or recorded is given: the file comes in
// as SoundIntake brings it, the slide takes its name and, when its length is
// known, lasts as long as the sound. A file whose kind or length cannot be
// told is attached only when the user says so. The whole is
// one step of the document's history. A guard, when given, holds the sound to
// the chosen content class.
class SoundAttacher {
public:
    SoundAttacher(MessageDocument& document, QWidget* parent, ClassGuard* guard = nullptr);

    // False when nothing changed: no folder or name, a missing file (said in
    // a box), a refused sound or a copy that failed.
    bool attach(const QString& folder, const QString& fileName);

private:
    QString workPath(const QString& name) const;
    bool admitted(QString& name, const QString& fileName, SoundIntake::Info& info);
    bool fitted(QString& name, SoundIntake::Info& info);
    bool askToAttach(const QString& source) const;
    void reportMissing() const;
    bool store(const QString& name, const QString& soundName, qint64 length);
    clsMMSManager& manager() const;

    MessageDocument& m_document;
    QWidget* m_parent;
    ClassGuard* m_guard;
};
