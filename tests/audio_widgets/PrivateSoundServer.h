#pragma once

#include <QProcess>
#include <QTemporaryDir>

// A sound server of the test's own: PulseAudio with one silent output
// ("vsink") and a microphone ("vmic") that hears that output, in a private
// runtime folder that this process then uses. Sound played into the output
// can be recorded from either its monitor or the microphone.
class PrivateSoundServer {
public:
    PrivateSoundServer() = default;
    ~PrivateSoundServer();
    PrivateSoundServer(const PrivateSoundServer&) = delete;
    PrivateSoundServer& operator=(const PrivateSoundServer&) = delete;

    // Empty when the server runs, else what went wrong.
    QString start();
    // Plays a WAV file into the output until it ends or the server goes;
    // a file played before is cut off.
    void play(const QString& wav);
    // The server dies as if pulled away: no goodbye to its clients.
    void kill();

private:
    QString pactl(const QStringList& arguments);
    QProcessEnvironment environment() const;

    QTemporaryDir m_runtime;
    QProcess m_server;
    QProcess m_player;
};
