#pragma once

#include <QString>
#include <functional>
#include <map>
#include <memory>

class AudioBackend;
class MciDevice;

// The media command interpreter: the command strings the program sends to
// play, record and measure sounds, interpreted over an audio backend.
//
//   open new type waveaudio alias A buffer N      open waveaudio!PATH alias A
//   open sequencer!PATH alias A                   open MPEGVideo!PATH alias A
//   set A time format ms [alignment N] [channels N] [bitspersample N]
//         [samplespersec N] [bytespersec N]
//   record A [to MS]    play A [from MS] [to MS]    stop A    close A|all
//   save A PATH         status A mode|length|position|samplespersec|bitspersample
//                       status A level (while recording: the loudest recent sample)
//
// Replies are "playing", "recording", "stopped" or decimal numbers. Aliases
// are compared without regard to case. Paths may hold spaces, or be quoted.
class Mci {
public:
    explicit Mci(AudioBackend& backend);
    ~Mci();
    Mci(const Mci&) = delete;
    Mci& operator=(const Mci&) = delete;

    // Returns 0 or an error number; the reply is cut to replySize - 1
    // characters, as a buffer of that size with its closing zero would hold.
    int mciSendString(const QString& command, QString* reply, int replySize);
    static QString mciGetErrorString(int code);
    // What the library said about the last failure (a file's defect, for instance).
    QString lastErrorDetail() const { return m_lastDetail; }
    AudioBackend& backend() const { return m_backend; }
    // Every command string as it is received, for a log or a test that
    // checks what was asked of the device and in which order.
    void setTrace(std::function<void(const QString& command)> trace) { m_trace = std::move(trace); }

    // The interpreter the program uses: over the sound device when there is
    // one, otherwise the silent backend. Tests install their own.
    static Mci& instance();
    static void install(Mci* mci);

private:
    int execute(const QString& command, QString& reply);
    int open(const QString& arguments);
    int openDevice(const QString& type, const QString& path, std::unique_ptr<MciDevice>& device);
    int close(const QString& alias);
    int deviceCommand(const QString& verb, const QString& alias, const QStringList& words,
                      const QString& command, QString& reply);
    int save(MciDevice& device, const QString& command);

    AudioBackend& m_backend;
    std::map<QString, std::unique_ptr<MciDevice>> m_devices;
    QString m_lastDetail;
    std::function<void(const QString&)> m_trace;
};

// The interface as the program calls it, on Mci::instance().
int mciSendString(const QString& command, QString* reply, int replySize);
// The text of an error number cut to size - 1 characters; false for an unknown number.
bool mciGetErrorString(int code, QString* text, int size);
