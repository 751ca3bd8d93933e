#pragma once

#include "PrivateTempDir.h"
#include "QualityPreset.h"
#include "RecorderSession.h"
#include "clsRunPgm.h"

#include "AudioBackend.h"

#include <QTimer>
#include <QWidget>

class QComboBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;

// The recorder: records a sound from the sound card in one of six
// qualities, plays it back, lets the part to keep be chosen in the audio
// editor, and saves it under a name as WAV, MP3 or AMR into a folder the
// main window gives; OK saves and hands the file to the main window. The
// device is driven by the media commands under the alias "mysound". Input
// records what the computer plays instead of the microphone, and a meter
// shows the input's level while recording.
class ctlAudioRecorder : public QWidget {
    Q_OBJECT
public:
    static constexpr int TimerMs = 100;

    explicit ctlAudioRecorder(QWidget* parent = nullptr);
    ~ctlAudioRecorder() override;

    void TranslateControl();
    void SetMaxRecordTime(qint64 ms);
    // The part of the recording that is saved; -1 for either keeps all of it.
    void SetStartEndTime(qint64 startMs, qint64 endMs);
    // Where recordings are saved (a folder of the work folder).
    void setSaveFolder(const QString& folder);
    static void CloseSound();

    void record();
    void stop();
    void play();
    // False when nothing was saved (refused name, declined overwrite, failure).
    bool save();
    void ok();
    void editRange();
    // Opens the sound server's mixer to choose and level the input.
    void setup();
    bool hasUnsavedRecording() const { return m_unsaved; }
    QString savedFile() const { return m_savedFile; }
    int selectedEntry() const;

signals:
    // OK: a saved recording for the current slide; folder ends in "/".
    void recordingFinished(const QString& folder, const QString& file);

private:
    void buildLayout();
    void fillQualities();
    QualityPreset selectedPreset() const;
    QString extension() const;
    QString chosenName();
    bool saveAs(const QString& target);
    static bool copyOver(const QString& wav, const QString& target, QString* why);
    bool saveAmr(const QString& wav, const QString& target, QString* why);
    QString trimmedCopy(QString* why);
    void mRecordTimer_Timer();
    void showStopped();
    void showElapsed();
    void enableButtons(bool busy);
    RecordingInput chosenInput() const;
    bool canRecord() const;
    void showInputState();
    void showLevel();
    bool failed(int error);
    void inform(const QString& text);

    RecorderSession m_session;
    QComboBox* cboQuality;
    QLineEdit* txtName;
    QLabel* lblName;
    QLabel* lblElapsed;
    QProgressBar* prgTime;
    QPushButton* cmdRecord;
    QPushButton* cmdStop;
    QPushButton* cmdPlay;
    QPushButton* cmdEdit;
    QPushButton* cmdSetup;
    QPushButton* cmdInput;
    QProgressBar* prgLevel;
    QLabel* lblNoInput;
    QPushButton* cmdSave;
    QPushButton* cmdOK;
    QTimer mRecordTimer;
    clsRunPgm m_mixer;
    PrivateTempDir m_scratch;
    QString m_folder;
    QString m_savedFile;
    qint64 m_maxMs = 300000;
    qint64 m_elapsed = 0;
    qint64 m_lengthMs = 0;
    qint64 m_startMs = -1;
    qint64 m_endMs = -1;
    bool m_unsaved = false;
    bool m_exists = false;
    bool m_busy = false;
};
