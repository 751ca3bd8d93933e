#include "RecorderSession.h"

#include "Mci.h"
#include "VbFormat.h"

#include <algorithm>

namespace {
int send(const QString& command, QString* reply = nullptr) {
    return mciSendString(command, reply, RecorderSession::kReplySize);
}
} // namespace

int RecorderSession::StartRecording(const QualityPreset& preset, std::int64_t maxRecordTimeMs) {
    const QString commands[] = {
        "close " + alias(),
        "open new type waveaudio alias " + alias() + " buffer 9",
        preset.setCommand(alias()),
        "record " + alias() + " to " + VbFormat::format(double(maxRecordTimeMs), "#0"),
    };
    // Closing a device that is not open fails harmlessly; the sequence goes on after it.
    send(commands[0]);
    for (int i = 1; i < 4; ++i)
        if (const int error = send(commands[i]); error != 0)
            return error;
    return 0;
}

int RecorderSession::Stop() {
    return send("stop " + alias());
}

int RecorderSession::Play() {
    send("stop " + alias());
    return send("play " + alias() + " from 1");
}

QString RecorderSession::Mode() {
    QString reply;
    return send("status " + alias() + " mode", &reply) == 0 ? reply : QStringLiteral("stopped");
}

std::int64_t RecorderSession::LengthMs() {
    QString reply;
    return send("status " + alias() + " length", &reply) == 0 ? reply.toLongLong() : -1;
}

double RecorderSession::Level(int bitsPerSample) {
    QString reply;
    if (send("status " + alias() + " level", &reply) != 0)
        return 0;
    return std::clamp(reply.toDouble() / (bitsPerSample == 8 ? 127 : 32767), 0.0, 1.0);
}

int RecorderSession::Save(const QString& path) {
    return send("save " + alias() + " " + path);
}

void RecorderSession::CloseSound() {
    send("close " + alias());
    send("close csound");
}
