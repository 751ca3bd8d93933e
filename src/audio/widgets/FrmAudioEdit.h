#pragma once

#include "AudioFilePlayer.h"
#include "ctlAudioSlider.h"

#include <QDialog>
#include <QTimer>

class QLabel;
class QPushButton;

// The audio editor: the sound's waveform under two markers, A and B, that
// set the part to keep. The markers are dragged, moved with the keys or
// nudged by exactly ten milliseconds; Play plays from A to B with the
// progress in the track; OK hands A and B on through rangeAccepted.
class FrmAudioEdit : public QDialog {
    Q_OBJECT
public:
    static constexpr qint64 NudgeMs = 10;

    explicit FrmAudioEdit(QWidget* parent = nullptr);
    ~FrmAudioEdit() override;

    void TranslateForm();
    // Opens the sound under the recorder's player and reads its facts and
    // samples; false (and "no sound loaded") when it cannot be opened.
    bool SetAudioSource(const QString& path);
    // The range shown; -1 for either is the whole sound.
    void SetStartEndTime(qint64 startMs, qint64 endMs);
    qint64 startMs() const { return m_slider->ValueA(); }
    qint64 endMs() const { return m_slider->ValueB(); }
    ctlAudioSlider* slider() const { return m_slider; }
    bool isPlaying() const { return m_poll.isActive(); }

    // Moves a marker by NudgeMs, earlier (-1) or later (+1).
    void nudge(ctlAudioSlider::Thumb thumb, int direction);
    void playRange();
    void stopPlaying();

signals:
    void rangeAccepted(qint64 startMs, qint64 endMs);

protected:
    void done(int result) override;

private:
    QPushButton* button(const char* name);
    void buildLayout();
    void showFacts(qint64 lengthMs, const QString& rate, const QString& bits);
    void showMarkers();
    void pollPlayer();
    void loadWaveform(const QString& path);

    ctlAudioSlider* m_slider;
    QLabel* lblLength;
    QLabel* lblSamples;
    QLabel* lblBits;
    QLabel* lblA;
    QLabel* lblB;
    QPushButton* cmdAEarlier;
    QPushButton* cmdALater;
    QPushButton* cmdBEarlier;
    QPushButton* cmdBLater;
    QPushButton* cmdPlay;
    QPushButton* cmdOK;
    QPushButton* cmdCancel;
    AudioFilePlayer m_player;
    QTimer m_poll;
    bool m_loaded = false;
};
