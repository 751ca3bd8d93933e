#include "PrivateSoundServer.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QThread>

PrivateSoundServer::~PrivateSoundServer() {
    for (QProcess* process : {&m_player, &m_server}) {
        process->kill();
        process->waitForFinished(5000);
    }
}

QProcessEnvironment PrivateSoundServer::environment() const {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("XDG_RUNTIME_DIR", m_runtime.path());
    env.insert("HOME", m_runtime.path());
    env.remove("PULSE_SERVER");
    return env;
}

QString PrivateSoundServer::start() {
    if (!m_runtime.isValid())
        return "no runtime folder";
    QFile::setPermissions(m_runtime.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    // This process, and Qt's sound devices in it, find the server through these.
    qputenv("XDG_RUNTIME_DIR", m_runtime.path().toLocal8Bit());
    qputenv("HOME", m_runtime.path().toLocal8Bit());
    qunsetenv("PULSE_SERVER");
    m_server.setProcessEnvironment(environment());
    m_server.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    m_server.start("pulseaudio", {"-n", "--daemonize=no", "--exit-idle-time=20", "--disallow-exit",
                                  "--load=module-native-protocol-unix",
                                  "--load=module-null-sink sink_name=vsink"});
    if (!m_server.waitForStarted(10000))
        return "pulseaudio does not start: " + m_server.errorString();
    const QDeadlineTimer deadline(15000);
    while (pactl({"info"}).isEmpty()) {
        if (deadline.hasExpired() || m_server.state() != QProcess::Running)
            return "pulseaudio does not answer";
        QThread::msleep(100);
    }
    pactl({"load-module", "module-virtual-source", "source_name=vmic", "master=vsink.monitor"});
    pactl({"set-default-sink", "vsink"});
    pactl({"set-default-source", "vmic"});
    return QString();
}

QString PrivateSoundServer::pactl(const QStringList& arguments) {
    QProcess run;
    run.setProcessEnvironment(environment());
    run.start("pactl", arguments);
    if (!run.waitForFinished(10000) || run.exitCode() != 0)
        return QString();
    return QString::fromLocal8Bit(run.readAllStandardOutput());
}

void PrivateSoundServer::play(const QString& wav) {
    m_player.kill();
    m_player.waitForFinished(5000);
    m_player.setProcessEnvironment(environment());
    m_player.start("paplay", {"--device=vsink", wav});
    m_player.waitForStarted(10000);
}

void PrivateSoundServer::kill() {
    m_server.kill();
    m_server.waitForFinished(10000);
}
