#include "SlidePanel.h"

#include "AppGlobals.h"
#include "FieldLabel.h"
#include "PreviewClock.h"
#include "VbFormat.h"
#include "clsMessage.h"
#include "ctlSlideTime.h"

#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>

SlidePanel::SlidePanel(QWidget* picture, QWidget* parent)
    : QWidget(parent), m_picture(picture), txtMessage(new QPlainTextEdit(this)),
      m_time(new ctlSlideTime(this)), lblText(FieldLabel::create(txtMessage, this)),
      lblSlideTime(FieldLabel::create(m_time, this)), lblTotal(new QLabel(this)),
      lblTime(new QLabel(this)), lblSound(new QLabel(this)), cmdPlaySound(new QPushButton(this)),
      cmdPreview(new QPushButton(this)), cmdAddNewSlide(new QPushButton(this)),
      cmdDuplicateSlide(new QPushButton(this)), cmdDeleteSlide(new QPushButton(this)) {
    setObjectName(QStringLiteral("SlidePanel"));
    txtMessage->setObjectName(QStringLiteral("txtMessage"));
    txtMessage->setTabChangesFocus(true);
    txtMessage->setMaximumHeight(fontMetrics().lineSpacing() * 4);
    lblTime->setObjectName(QStringLiteral("lblTime"));
    lblSound->setObjectName(QStringLiteral("lblSound"));
    cmdPlaySound->setObjectName(QStringLiteral("cmdPlaySound"));
    cmdPlaySound->setEnabled(false);
    cmdPreview->setObjectName(QStringLiteral("cmdPreview"));
    cmdPreview->setIcon(QIcon::fromTheme(QStringLiteral("media-playback-start")));
    cmdAddNewSlide->setObjectName(QStringLiteral("cmdAddNewSlide"));
    cmdDuplicateSlide->setObjectName(QStringLiteral("cmdDuplicateSlide"));
    cmdDeleteSlide->setObjectName(QStringLiteral("cmdDeleteSlide"));
    buildLayout();
    txtMessage->installEventFilter(this);
    m_time->installEventFilter(this);
    connect(txtMessage, &QPlainTextEdit::textChanged, this, [this] {
        if (!m_showing)
            emit textEdited(txtMessage->toPlainText());
    });
    connect(m_time, &ctlSlideTime::durationEdited, this, &SlidePanel::durationEdited);
    connect(cmdAddNewSlide, &QPushButton::clicked, this, &SlidePanel::addClicked);
    connect(cmdDuplicateSlide, &QPushButton::clicked, this, &SlidePanel::duplicateClicked);
    connect(cmdDeleteSlide, &QPushButton::clicked, this, &SlidePanel::deleteClicked);
    connect(cmdPlaySound, &QPushButton::clicked, this, &SlidePanel::playSoundClicked);
    connect(cmdPreview, &QPushButton::clicked, this, &SlidePanel::previewClicked);
    TranslateForm();
}

void SlidePanel::buildLayout() {
    auto* fields = new QGridLayout;
    fields->addWidget(lblText, 0, 0);
    fields->addWidget(txtMessage, 0, 1, 1, 3);
    fields->addWidget(lblSlideTime, 1, 0);
    fields->addWidget(m_time, 1, 1);
    auto* total = new QHBoxLayout;
    total->addWidget(lblTotal);
    total->addWidget(lblTime);
    total->addWidget(cmdPreview);
    fields->addLayout(total, 1, 2);
    fields->setColumnStretch(3, 1);
    // The sound has a row of its own, so a long name never narrows the slide.
    auto* sound = new QHBoxLayout;
    sound->addWidget(lblSound, 1);
    sound->addWidget(cmdPlaySound);
    fields->addLayout(sound, 2, 1, 1, 3);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(cmdAddNewSlide);
    buttons->addWidget(cmdDuplicateSlide);
    buttons->addWidget(cmdDeleteSlide);
    buttons->addStretch();
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_picture, 1);
    layout->addLayout(fields);
    layout->addLayout(buttons);
}

void SlidePanel::TranslateForm() {
    FieldLabel::setCaption(lblText, AppGlobals::text("STR_TEXT_TITLE", "Text"));
    lblSlideTime->setText(
        FieldLabel::withMnemonic(AppGlobals::text("STR_SLIDE_TIME", "Slide ti&me")));
    m_time->TranslateControl();
    cmdAddNewSlide->setText(AppGlobals::text("MNU_SLIDE_ADD", "Add slide"));
    cmdDuplicateSlide->setText(AppGlobals::text("MNU_SLIDE_DUPLICATE", "Duplicate"));
    cmdDeleteSlide->setText(AppGlobals::text("BTN_DELETE", "Delete"));
    setSoundPlaying(m_soundPlaying);
    setPreviewPlaying(m_previewPlaying);
    lblTotal->setText(AppGlobals::text("STR_TOTAL_TIME", "Total time") + u':');
    lblSound->setAccessibleDescription(AppGlobals::text("STR_AUDIO_TITLE", "Sound"));
    showSound();
}

// A slide without a sound says so, for the eye and for a screen reader.
void SlidePanel::showSound() {
    lblSound->setText(m_sound.isEmpty() ? AppGlobals::text("STR_SLIDE_NO_SOUND", "No sound")
                                        : m_sound);
}

void SlidePanel::showSlide(const clsMessage* message, int slide) {
    m_showing = true;
    if (!message || slide < 1 || slide > message->Slides().Count()) {
        txtMessage->clear();
        m_sound.clear();
        lblSound->clear();
        cmdPlaySound->setEnabled(false);
        cmdPreview->setObjectName(QStringLiteral("cmdPreview"));
        cmdPreview->setIcon(QIcon::fromTheme(QStringLiteral("media-playback-start")));
        m_showing = false;
        return;
    }
    const clsSlide& shown = message->Slides().Item(slide);
    QString text = shown.Text();
    text.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    if (txtMessage->toPlainText() != text)
        txtMessage->setPlainText(text);
    m_time->setDuration(shown.Duration());
    m_sound = shown.Sound().isEmpty()
                  ? QString()
                  : shown.SoundName() + " - " + VbFormat::seconds(shown.SoundDuration());
    showSound();
    cmdPlaySound->setEnabled(!shown.Sound().isEmpty());
    m_showing = false;
}

void SlidePanel::setSoundPlaying(bool playing) {
    m_soundPlaying = playing;
    cmdPlaySound->setText(playing ? AppGlobals::text("STR_STOP", "Stop")
                                  : AppGlobals::text("STR_PLAY", "Play"));
    cmdPlaySound->setAccessibleName(playing ? AppGlobals::text("STR_STOP_SOUND", "Stop the sound")
                                            : AppGlobals::text("STR_PLAY_SOUND", "Play the sound"));
}

void SlidePanel::setPreviewPlaying(bool playing) {
    m_previewPlaying = playing;
    cmdPreview->setText(playing ? AppGlobals::text("STR_STOP", "Stop")
                                : AppGlobals::text("STR_PLAY", "Play"));
    cmdPreview->setIcon(QIcon::fromTheme(playing ? QStringLiteral("media-playback-stop")
                                                 : QStringLiteral("media-playback-start")));
    cmdPreview->setAccessibleName(playing
                                      ? AppGlobals::text("STR_PREVIEW_STOP", "Stop the message")
                                      : AppGlobals::text("STR_PREVIEW_PLAY", "Play the message"));
}

void SlidePanel::showTotal(qint64 ms) {
    lblTime->setText(VbFormat::seconds(ms));
}

void SlidePanel::showPlayTime(qint64 elapsedMs, qint64 totalMs) {
    lblTime->setText(PreviewClock::timeText(elapsedMs, totalMs));
}

void SlidePanel::setTimeFormat(const QString& format) {
    m_time->setTimeFormat(format);
}

void SlidePanel::setSlideButtonsEnabled(bool enabled) {
    for (QPushButton* button : {cmdAddNewSlide, cmdDuplicateSlide, cmdDeleteSlide})
        button->setEnabled(enabled);
}

bool SlidePanel::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusOut && (watched == txtMessage || watched == m_time))
        emit fieldLeft();
    return QWidget::eventFilter(watched, event);
}
