#include "FrmAudioEdit.h"

#include "AppGlobals.h"
#include "FfmpegDecoder.h"
#include "PcmSound.h"
#include "VbFormat.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace {
QString text(const char* key, const char* fallback) {
    return AppGlobals::text(key, fallback);
}

} // namespace

FrmAudioEdit::FrmAudioEdit(QWidget* parent)
    : QDialog(parent), m_slider(new ctlAudioSlider), lblLength(new QLabel), lblSamples(new QLabel),
      lblBits(new QLabel), lblA(new QLabel), lblB(new QLabel), cmdAEarlier(button("cmdAEarlier")),
      cmdALater(button("cmdALater")), cmdBEarlier(button("cmdBEarlier")),
      cmdBLater(button("cmdBLater")), cmdPlay(button("cmdPlay")), cmdOK(button("cmdOK")),
      cmdCancel(button("cmdCancel")) {
    setObjectName(QStringLiteral("FrmAudioEdit"));
    buildLayout();
    connect(m_slider, &ctlAudioSlider::valuesChanged, this, &FrmAudioEdit::showMarkers);
    connect(cmdAEarlier, &QPushButton::clicked, this,
            [this] { nudge(ctlAudioSlider::ThumbA, -1); });
    connect(cmdALater, &QPushButton::clicked, this, [this] { nudge(ctlAudioSlider::ThumbA, 1); });
    connect(cmdBEarlier, &QPushButton::clicked, this,
            [this] { nudge(ctlAudioSlider::ThumbB, -1); });
    connect(cmdBLater, &QPushButton::clicked, this, [this] { nudge(ctlAudioSlider::ThumbB, 1); });
    connect(cmdPlay, &QPushButton::clicked, this,
            [this] { isPlaying() ? stopPlaying() : playRange(); });
    connect(cmdOK, &QPushButton::clicked, this, &QDialog::accept);
    connect(cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
    cmdOK->setDefault(true);
    m_poll.setInterval(50);
    connect(&m_poll, &QTimer::timeout, this, &FrmAudioEdit::pollPlayer);
    TranslateForm();
    showFacts(-1, QString(), QString());
}

FrmAudioEdit::~FrmAudioEdit() {
    m_player.Close();
}

QPushButton* FrmAudioEdit::button(const char* name) {
    auto* made = new QPushButton;
    made->setObjectName(QLatin1String(name));
    made->setAutoDefault(false);
    return made;
}

void FrmAudioEdit::buildLayout() {
    auto* facts = new QHBoxLayout;
    for (QLabel* label : {lblLength, lblSamples, lblBits})
        facts->addWidget(label);
    facts->addStretch();
    auto* markers = new QGridLayout;
    markers->addWidget(lblA, 0, 0);
    markers->addWidget(cmdAEarlier, 0, 1);
    markers->addWidget(cmdALater, 0, 2);
    markers->setColumnStretch(3, 1);
    markers->addWidget(lblB, 0, 4);
    markers->addWidget(cmdBEarlier, 0, 5);
    markers->addWidget(cmdBLater, 0, 6);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdPlay);
    buttons->addStretch();
    buttons->addWidget(cmdOK);
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(facts);
    layout->addWidget(m_slider);
    layout->addLayout(markers);
    layout->addLayout(buttons);
}

void FrmAudioEdit::TranslateForm() {
    setWindowTitle(text("STR_AUDIO_EDIT_TITLE", "Edit sound"));
    cmdAEarlier->setText(text("STR_AUDIO_A_EARLIER", "&A earlier"));
    cmdALater->setText(text("STR_AUDIO_A_LATER", "A &later"));
    cmdBEarlier->setText(text("STR_AUDIO_B_EARLIER", "B &earlier"));
    cmdBLater->setText(text("STR_AUDIO_B_LATER", "&B later"));
    const QString nudge = text("STR_AUDIO_NUDGE_TIP", "Moves the marker by 10 ms");
    for (QPushButton* shift : {cmdAEarlier, cmdALater, cmdBEarlier, cmdBLater})
        shift->setToolTip(nudge);
    cmdPlay->setText(text(isPlaying() ? "STR_STOP" : "STR_PLAY", isPlaying() ? "Stop" : "Play"));
    cmdOK->setText(text("BTN_OK", "OK"));
    cmdCancel->setText(text("BTN_CANCEL", "Cancel"));
    showMarkers();
}

bool FrmAudioEdit::SetAudioSource(const QString& path) {
    stopPlaying();
    m_loaded = m_player.Open(path) == 0 && m_player.lengthMs() > 0;
    if (!m_loaded) {
        showFacts(-1, QString(), QString());
        m_slider->setWaveform(PcmSound());
        return false;
    }
    // Asked in this order, as the device expects them.
    const QString rate = m_player.Status(QStringLiteral("samplespersec"));
    const QString bits = m_player.Status(QStringLiteral("bitspersample"));
    showFacts(m_player.lengthMs(), rate, bits);
    m_slider->SetMinMaxValue(0, m_player.lengthMs());
    SetStartEndTime(-1, -1);
    loadWaveform(path);
    return true;
}

// The outline comes from the samples themselves; a MIDI file has none to
// show, and the decoder leaves the sound empty for it.
void FrmAudioEdit::loadWaveform(const QString& path) {
    PcmSound sound;
    QString error;
    FfmpegDecoder::decodeAudio(path, sound, error);
    m_slider->setWaveform(sound);
}

void FrmAudioEdit::showFacts(qint64 lengthMs, const QString& rate, const QString& bits) {
    if (lengthMs < 0) {
        lblLength->setText(text("ERR_NO_SOUND_LOADED", "No sound is loaded."));
        lblSamples->clear();
        lblBits->clear();
    } else {
        lblLength->setText(text("STR_AUDIO_LENGTH", "Length: ") +
                           VbFormat::seconds(lengthMs, QStringLiteral("##0.00")));
        lblSamples->setText(rate.isEmpty() || rate == QLatin1String("-1")
                                ? text("STR_SAMPLES_SEC_NA", "Samples per second: unknown")
                                : text("STR_SAMPLES_SEC", "Samples per second: ") + rate);
        lblBits->setText(bits.isEmpty() || bits == QLatin1String("-1")
                             ? text("STR_BITSPER_SAMP_NA", "Bits per sample: unknown")
                             : text("STR_BITSPER_SAMP", "Bits per sample: ") + bits);
    }
    for (QWidget* control : std::initializer_list<QWidget*>{m_slider, cmdAEarlier, cmdALater,
                                                            cmdBEarlier, cmdBLater, cmdPlay})
        control->setEnabled(lengthMs > 0);
}

void FrmAudioEdit::SetStartEndTime(qint64 startMs, qint64 endMs) {
    if (startMs < 0 || endMs < 0)
        m_slider->setValues(m_slider->minimum(), m_slider->maximum());
    else
        m_slider->setValues(startMs, endMs);
    showMarkers();
}

void FrmAudioEdit::showMarkers() {
    const QString twoPlaces = QStringLiteral("#0.00");
    lblA->setText(QStringLiteral("A: ") + VbFormat::seconds(m_loaded ? startMs() : 0, twoPlaces));
    lblB->setText(QStringLiteral("B: ") + VbFormat::seconds(m_loaded ? endMs() : 0, twoPlaces));
    lblA->setAccessibleName(lblA->text());
    lblB->setAccessibleName(lblB->text());
}

void FrmAudioEdit::nudge(ctlAudioSlider::Thumb thumb, int direction) {
    const qint64 step = direction < 0 ? -NudgeMs : NudgeMs;
    if (thumb == ctlAudioSlider::ThumbA)
        m_slider->setValueA(startMs() + step);
    else
        m_slider->setValueB(endMs() + step);
}

void FrmAudioEdit::playRange() {
    if (!m_loaded || m_player.Play(startMs(), endMs()) != 0)
        return;
    m_slider->SetProgress(startMs());
    m_slider->setProgressVisible(true);
    m_poll.start();
    cmdPlay->setText(text("STR_STOP", "Stop"));
}

void FrmAudioEdit::stopPlaying() {
    if (!isPlaying())
        return;
    m_poll.stop();
    m_player.Stop();
    m_slider->setProgressVisible(false);
    cmdPlay->setText(text("STR_PLAY", "Play"));
}

void FrmAudioEdit::pollPlayer() {
    QString mode;
    std::int64_t position = -1;
    if (m_player.Poll(mode, position) != 0 || mode != QLatin1String("playing"))
        return stopPlaying();
    m_slider->SetProgress(position);
}

void FrmAudioEdit::done(int result) {
    stopPlaying();
    if (result == QDialog::Accepted && m_loaded)
        emit rangeAccepted(startMs(), endMs());
    QDialog::done(result);
}
