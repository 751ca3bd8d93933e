#include "ctlAudioRecorder.h"

#include "AmrConverter.h"
#include "AppGlobals.h"
#include "AppPaths.h"
#include "AtomicFile.h"
#include "Clock.h"
#include "DialogService.h"
#include "FieldLabel.h"
#include "FrmAudioEdit.h"
#include "Mci.h"
#include "Mp3Encoder.h"
#include "PlainFileName.h"
#include "QualitySettings.h"
#include "VbFormat.h"
#include "WavTrimmer.h"
#include "clsPropertiesXML.h"

#include <QComboBox>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <cmath>

namespace {
QString text(const char* key, const char* fallback) {
    return AppGlobals::text(key, fallback);
}

struct Quality {
    const char* key;
    const char* caption;
};
constexpr Quality Qualities[QualitySettings::kEntries] = {
    {"STR_SPEECH_QUALITY", "Speech (8 kHz)"}, {"STR_AMRNB_QUALITY", "AMR-NB for phones (8 kHz)"},
    {"STR_LOW_QUALITY", "Low quality"},       {"STR_MEDIUM_QUALITY", "Medium quality"},
    {"STR_HIGH_QUALITY", "High quality"},     {"STR_MY_QUALITY", "My quality"},
};

QPushButton* named(const char* name) {
    auto* button = new QPushButton;
    button->setObjectName(QLatin1String(name));
    return button;
}

// The meter reads in decibels, as the ear hears: -60 dB and below is empty.
int meterPercent(double fraction) {
    if (fraction <= 0)
        return 0;
    return std::clamp(int(std::lround((20 * std::log10(fraction) + 60) * 100 / 60)), 0, 100);
}
} // namespace

ctlAudioRecorder::ctlAudioRecorder(QWidget* parent)
    : QWidget(parent), cboQuality(new QComboBox), txtName(new QLineEdit), lblName(new QLabel),
      lblElapsed(new QLabel), prgTime(new QProgressBar), cmdRecord(named("cmdRecord")),
      cmdStop(named("cmdStop")), cmdPlay(named("cmdPlay")), cmdEdit(named("cmdEdit")),
      cmdSetup(named("cmdSetup")), cmdInput(named("cmdInput")), prgLevel(new QProgressBar),
      lblNoInput(new QLabel), cmdSave(named("cmdSave")), cmdOK(named("cmdOK")) {
    setObjectName(QStringLiteral("ctlAudioRecorder"));
    cboQuality->setObjectName(QStringLiteral("cboQuality"));
    txtName->setObjectName(QStringLiteral("txtName"));
    lblElapsed->setObjectName(QStringLiteral("lblElapsed"));
    prgTime->setObjectName(QStringLiteral("prgTime"));
    prgTime->setRange(0, 100);
    prgLevel->setObjectName(QStringLiteral("prgLevel"));
    prgLevel->setRange(0, 100);
    prgLevel->setTextVisible(false);
    prgLevel->setMaximumHeight(prgTime->sizeHint().height() / 2);
    lblNoInput->setObjectName(QStringLiteral("lblNoInput"));
    lblNoInput->setWordWrap(true);
    cmdInput->setCheckable(true);
    lblName->setBuddy(txtName);
    buildLayout();
    mRecordTimer.setInterval(TimerMs);
    connect(&mRecordTimer, &QTimer::timeout, this, &ctlAudioRecorder::mRecordTimer_Timer);
    connect(cmdRecord, &QPushButton::clicked, this, &ctlAudioRecorder::record);
    connect(cmdStop, &QPushButton::clicked, this, &ctlAudioRecorder::stop);
    connect(cmdPlay, &QPushButton::clicked, this, &ctlAudioRecorder::play);
    connect(cmdEdit, &QPushButton::clicked, this, &ctlAudioRecorder::editRange);
    connect(cmdSetup, &QPushButton::clicked, this, &ctlAudioRecorder::setup);
    connect(cmdInput, &QPushButton::toggled, this, [this] {
        showInputState();
        enableButtons(m_busy);
    });
    connect(cmdSave, &QPushButton::clicked, this, [this] { save(); });
    connect(cmdOK, &QPushButton::clicked, this, &ctlAudioRecorder::ok);
    connect(cboQuality, &QComboBox::currentIndexChanged, this, [this] {
        if (clsPropertiesXML* settings = AppGlobals::settings())
            settings->SetProp("recording", "Selected", QString::number(selectedEntry()));
    });
    TranslateControl();
    showStopped();
}

ctlAudioRecorder::~ctlAudioRecorder() {
    mRecordTimer.stop();
    CloseSound();
    // The mixer is the user's to close.
    m_mixer.terminated();
}

void ctlAudioRecorder::buildLayout() {
    auto* buttons = new QHBoxLayout;
    for (QPushButton* button : {cmdRecord, cmdStop, cmdPlay, cmdEdit})
        buttons->addWidget(button);
    buttons->addStretch();
    auto* keep = new QHBoxLayout;
    keep->addWidget(cmdSetup);
    keep->addWidget(cmdInput);
    keep->addStretch();
    keep->addWidget(cmdSave);
    keep->addWidget(cmdOK);
    auto* layout = new QGridLayout(this);
    layout->addWidget(cboQuality, 0, 0, 1, 2);
    layout->addLayout(buttons, 1, 0, 1, 2);
    layout->addWidget(prgTime, 2, 0);
    layout->addWidget(lblElapsed, 2, 1);
    layout->addWidget(prgLevel, 3, 0);
    layout->addWidget(lblNoInput, 4, 0, 1, 2);
    layout->addWidget(lblName, 5, 0, 1, 2);
    layout->addWidget(txtName, 6, 0, 1, 2);
    layout->addLayout(keep, 7, 0, 1, 2);
    layout->setRowStretch(8, 1);
}

void ctlAudioRecorder::TranslateControl() {
    fillQualities();
    cmdRecord->setText(text("STR_RECORD", "&Record"));
    cmdStop->setText(text("STR_STOP", "Stop"));
    cmdPlay->setText(text("STR_PLAY", "Play"));
    cmdEdit->setText(text("BTN_EDIT", "Edit"));
    cmdSave->setText(text("STR_SAVE_RECORDING", "&Save"));
    cmdOK->setText(text("BTN_OK", "OK"));
    cmdSetup->setText(text("STR_REC_SETUP", "Se&tup..."));
    cmdSetup->setToolTip(text("STR_REC_SETUP_TIP", "Choose and level the sound input"));
    cmdInput->setText(text("BTN_INPUT", "&Input"));
    cmdInput->setToolTip(text("STR_REC_FROM_PLAYER", "Record what the computer plays"));
    cmdInput->setAccessibleDescription(cmdInput->toolTip());
    prgLevel->setAccessibleName(text("STR_REC_LEVEL", "Input level"));
    FieldLabel::setCaption(lblName, text("STR_NAME", "Name"));
    cboQuality->setAccessibleName(text("STR_QUALITY", "Quality"));
    prgTime->setAccessibleName(text("STR_REC_TIME", "Recording time"));
    // The window's translation blanks every named label; they are shown again.
    showElapsed();
    showInputState();
}

// Entries 1 and 2 always record the built-in preset; an entry whose MP3
// preset the encoder cannot meet is shown but cannot be chosen.
void ctlAudioRecorder::fillQualities() {
    clsPropertiesXML* settings = AppGlobals::settings();
    if (settings)
        QualitySettings(*settings).InitQualitySetting();
    const int selected =
        settings ? settings->GetProp("recording", "Selected", "1").toInt() : selectedEntry();
    const QSignalBlocker quiet(cboQuality);
    cboQuality->clear();
    for (int entry = 1; entry <= QualitySettings::kEntries; ++entry) {
        const Quality& quality = Qualities[entry - 1];
        cboQuality->addItem(AppGlobals::text(quality.key, quality.caption), entry);
    }
    cboQuality->setCurrentIndex(std::clamp(selected, 1, QualitySettings::kEntries) - 1);
}

int ctlAudioRecorder::selectedEntry() const {
    return std::max(1, cboQuality->currentData().toInt());
}

QualityPreset ctlAudioRecorder::selectedPreset() const {
    clsPropertiesXML* settings = AppGlobals::settings();
    return settings ? QualitySettings(*settings).presetForEntry(selectedEntry())
                    : QualityPreset::builtIn();
}

QString ctlAudioRecorder::extension() const {
    if (selectedEntry() == QualitySettings::kAmrEntry)
        return QStringLiteral("amr");
    return selectedPreset().isMp3() ? QStringLiteral("mp3") : QStringLiteral("wav");
}

void ctlAudioRecorder::SetMaxRecordTime(qint64 ms) {
    m_maxMs = ms > 0 ? ms : 300000;
}

void ctlAudioRecorder::SetStartEndTime(qint64 startMs, qint64 endMs) {
    m_startMs = startMs;
    m_endMs = endMs;
}

void ctlAudioRecorder::setSaveFolder(const QString& folder) {
    m_folder = AppPaths::withSlash(folder);
}

void ctlAudioRecorder::CloseSound() {
    RecorderSession::CloseSound();
}

void ctlAudioRecorder::record() {
    if (m_unsaved && AppGlobals::setting("preferences", "AskOverWriteRecording", "0") == "1" &&
        DialogService::messageBox(
            this, text("ASK_SAVE_RECORDING", "Save the recording before continuing?"),
            text("APP_PRODUCTNAME", "Vellumo"), QMessageBox::Yes | QMessageBox::No,
            QMessageBox::Question) == QMessageBox::Yes &&
        !save())
        return;
    if (txtName->text().trimmed().isEmpty())
        txtName->setText(QStringLiteral("R_") +
                         Clock::instance().now().toString(QStringLiteral("yyMMdd_HHmmss")));
    Mci::instance().backend().setRecordingInput(chosenInput());
    if (failed(m_session.StartRecording(selectedPreset(), m_maxMs)))
        return;
    m_elapsed = 0;
    m_unsaved = true;
    m_exists = true;
    m_savedFile.clear();
    m_startMs = m_endMs = -1;
    enableButtons(true);
    mRecordTimer.start();
}

void ctlAudioRecorder::stop() {
    failed(m_session.Stop());
}

void ctlAudioRecorder::play() {
    if (!m_exists)
        return inform(text("ERR_NO_SOUND_LOADED", "No sound is loaded."));
    m_lengthMs = m_session.LengthMs();
    if (failed(m_session.Play()))
        return;
    m_elapsed = 0;
    enableButtons(true);
    mRecordTimer.start();
}

void ctlAudioRecorder::mRecordTimer_Timer() {
    const QString mode = m_session.Mode();
    if (mode == QLatin1String("recording")) {
        m_elapsed += TimerMs;
        if (m_elapsed <= m_maxMs)
            prgTime->setValue(int(m_elapsed * 100 / m_maxMs));
        showLevel();
    } else if (mode == QLatin1String("playing")) {
        m_elapsed += TimerMs;
        prgTime->setValue(m_lengthMs > 0 ? int(std::min<qint64>(100, m_elapsed * 100 / m_lengthMs))
                                         : 0);
    } else {
        showStopped();
        return;
    }
    showElapsed();
}

void ctlAudioRecorder::showStopped() {
    mRecordTimer.stop();
    prgTime->setValue(0);
    prgLevel->setValue(0);
    m_elapsed = 0;
    showElapsed();
    enableButtons(false);
}

void ctlAudioRecorder::showElapsed() {
    lblElapsed->setText(VbFormat::seconds(m_elapsed));
}

void ctlAudioRecorder::showLevel() {
    prgLevel->setValue(meterPercent(m_session.Level(selectedPreset().bitsPerSample)));
}

void ctlAudioRecorder::enableButtons(bool busy) {
    m_busy = busy;
    cmdRecord->setEnabled(!busy && canRecord());
    cmdStop->setEnabled(busy);
    for (QPushButton* button : {cmdPlay, cmdEdit, cmdSave, cmdOK})
        button->setEnabled(!busy && m_exists);
    cboQuality->setEnabled(!busy);
    cmdInput->setEnabled(!busy && Mci::instance().backend().hasInput(RecordingInput::Playback));
}

RecordingInput ctlAudioRecorder::chosenInput() const {
    return cmdInput->isChecked() ? RecordingInput::Playback : RecordingInput::Microphone;
}

bool ctlAudioRecorder::canRecord() const {
    return Mci::instance().backend().hasInput(chosenInput());
}

// Without a sound device the recorder says so rather than failing on Record,
// and without a microphone it points to what can still be recorded.
void ctlAudioRecorder::showInputState() {
    const AudioBackend& card = Mci::instance().backend();
    QString notice;
    if (!card.hasInput(RecordingInput::Playback) && !card.hasInput(RecordingInput::Microphone))
        notice = text("STR_NO_SOUND_INPUT", "No sound device is present: nothing can be recorded.");
    else if (!canRecord())
        notice = text("STR_NO_MICROPHONE",
                      "No microphone is present. Input records what the computer plays.");
    lblNoInput->setText(notice);
    lblNoInput->setVisible(!notice.isEmpty());
}

// A name of the user's: spaces become "_", and it must be a plain file name.
QString ctlAudioRecorder::chosenName() {
    QString name = txtName->text().trimmed();
    name.replace(u' ', u'_');
    if (name.isEmpty()) {
        inform(text("STR_ENTER_NAME", "Please enter a name."));
        return QString();
    }
    const QString refusal = PlainFileName::refusal(name + u'.' + extension());
    if (!refusal.isEmpty()) {
        inform(refusal);
        return QString();
    }
    return name;
}

bool ctlAudioRecorder::save() {
    if (!m_exists) {
        inform(text("ERR_NO_SOUND_LOADED", "No sound is loaded."));
        return false;
    }
    const QString name = chosenName();
    if (name.isEmpty())
        return false;
    if (!AppPaths::createPath(m_folder)) {
        inform(AppGlobals::text("STR_FOLDER_NOT_MADE", "The folder %0 cannot be made.",
                                {QDir::toNativeSeparators(m_folder)}));
        return false;
    }
    const QString target = m_folder + name + u'.' + extension();
    if (QFileInfo::exists(target)) {
        QString question = AppGlobals::text(
            "STR_FILE_EXISTS", "The file %0 already exists.%nDo you want to replace it?",
            {QFileInfo(target).fileName()});
        question.replace(QLatin1String("\r\n"), QLatin1String("\n"));
        if (DialogService::messageBox(
                this, question, text("STR_FILE_SAVE_MSGCAP", "Save recording"),
                QMessageBox::Yes | QMessageBox::No, QMessageBox::Question) != QMessageBox::Yes)
            return false;
    }
    if (!saveAs(target))
        return false;
    m_unsaved = false;
    m_savedFile = target;
    return true;
}

// The recording as a WAV of its kept part: the device's own file when all
// of it is kept, else a sample-exact cut of it.
QString ctlAudioRecorder::trimmedCopy(QString* why) {
    const QString whole = m_scratch.path() + QStringLiteral("/recording.wav");
    QFile::remove(whole);
    if (const int error = m_session.Save(whole); error != 0) {
        *why = Mci::mciGetErrorString(error);
        return QString();
    }
    if (m_startMs < 0 || m_endMs < 0)
        return whole;
    const QString kept = m_scratch.path() + QStringLiteral("/kept.wav");
    QFile::remove(kept);
    *why = WavTrimmer::trim(whole, kept, m_startMs, m_endMs);
    return why->isEmpty() ? kept : QString();
}

bool ctlAudioRecorder::saveAs(const QString& target) {
    QString why;
    const QString wav = trimmedCopy(&why);
    bool saved = !wav.isEmpty();
    if (saved && extension() == QLatin1String("wav"))
        saved = copyOver(wav, target, &why);
    else if (saved && extension() == QLatin1String("mp3"))
        saved = Mp3Encoder::encodeFile(wav, target, selectedPreset().targetBytesPerSec, why);
    else if (saved)
        saved = saveAmr(wav, target, &why);
    if (!saved)
        inform(why);
    return saved;
}

// Written whole beside the target and then put in its place: a failed
// save leaves the user's earlier file as it was.
bool ctlAudioRecorder::copyOver(const QString& wav, const QString& target, QString* why) {
    QFile source(wav);
    if (source.open(QIODevice::ReadOnly))
        return AtomicFile::copyFile(source, target, why);
    *why = source.errorString();
    return false;
}

// The AMR is made from a WAV kept in the "amrwav" folder beside the sounds.
bool ctlAudioRecorder::saveAmr(const QString& wav, const QString& target, QString* why) {
    const QString folder = m_folder + QStringLiteral("amrwav/");
    const QString source = folder + QFileInfo(target).completeBaseName() + QStringLiteral(".wav");
    QFile::remove(source);
    const int result = AppPaths::createPath(folder) && QFile::copy(wav, source)
                           ? AmrConverter::wav2amr(source, target)
                           : -1;
    if (result != 0)
        *why = text("STR_AUDIO_INFO7", "The recording could not be converted") + " (" +
               QString::number(result) + u')';
    return result == 0;
}

void ctlAudioRecorder::ok() {
    if (m_unsaved && !save())
        return;
    if (m_savedFile.isEmpty())
        return inform(text("ERR_NO_SOUND_LOADED", "No sound is loaded."));
    const QFileInfo file(m_savedFile);
    emit recordingFinished(AppPaths::withSlash(file.path()), file.fileName());
}

// The audio editor opens on a copy of the whole recording; its range is
// applied when the recording is saved.
void ctlAudioRecorder::editRange() {
    const QString whole = m_scratch.path() + QStringLiteral("/edit.wav");
    QFile::remove(whole);
    if (!m_exists || failed(m_session.Save(whole)))
        return;
    FrmAudioEdit editor(this);
    connect(&editor, &FrmAudioEdit::rangeAccepted, this, &ctlAudioRecorder::SetStartEndTime);
    if (!editor.SetAudioSource(whole))
        return inform(text("ERR_NO_SOUND_LOADED", "No sound is loaded."));
    editor.SetStartEndTime(m_startMs, m_endMs);
    editor.exec();
}

void ctlAudioRecorder::setup() {
    const QString command =
        AppGlobals::setting("recording", "MixerCommand", QStringLiteral("pavucontrol -t 4"));
    if (m_mixer.running() && m_mixer.isActive())
        return;
    if (!m_mixer.run(QString(), command, 1))
        inform(AppGlobals::text("STR_MIXER_MISSING",
                                "The mixer %0 could not be started. Is it installed?",
                                {command.section(u' ', 0, 0)}));
}

bool ctlAudioRecorder::failed(int error) {
    if (error == 0)
        return false;
    inform(Mci::mciGetErrorString(error));
    return true;
}

void ctlAudioRecorder::inform(const QString& message) {
    DialogService::messageBox(this, message, text("APP_PRODUCTNAME", "Vellumo"), QMessageBox::Ok,
                              QMessageBox::Information);
}
