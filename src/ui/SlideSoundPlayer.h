#pragma once

#include "PrivateTempDir.h"

#include <QObject>
#include <QTimer>

// Plays the current slide's sound from the play button beside its name.
// An AMR sound, which no device plays, is played through a WAV copy made
// in a private folder; the message's own file is never touched.
class SlideSoundPlayer : public QObject {
    Q_OBJECT
public:
    explicit SlideSoundPlayer(QObject* parent = nullptr);
    ~SlideSoundPlayer() override;

    // False, with *why for the user, when the sound cannot be played.
    bool play(const QString& path, QString* why);
    void stop();
    bool isPlaying() const { return m_poll.isActive(); }

signals:
    // The sound ended or was stopped.
    void stopped();

private:
    QString playableCopy(const QString& path, QString* why);
    void poll();

    QTimer m_poll;
    PrivateTempDir m_copies;
};
