#include "frmPreview.h"

#include "AppGlobals.h"
#include "DialogService.h"
#include "PhoneView.h"
#include "PreviewClock.h"
#include "clsPopupMenu.h"
#include "clsPropertiesXML.h"
#include "ctlSmilPlayer.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QToolButton>
#include <QVBoxLayout>

namespace {
QString text(const char* key, const char* fallback) {
    return AppGlobals::text(key, fallback);
}

enum PhoneMenu { DownloadPicture = 1, Loop = 2 };

// More than a few lines would push the phone out of a small dock.
constexpr int kProblemsShown = 4;

QString sizeText(QSize size) {
    return QString::number(size.width()) + u'x' + QString::number(size.height());
}
} // namespace

frmPreview::frmPreview(QWidget* parent)
    : QDockWidget(parent), picPhone(new PhoneView), lblText(new QLabel), cmdPlay(new QPushButton),
      lblTime(new QLabel), lblSlideImageSize(new QLabel), cmdImgSize(new QToolButton),
      lstImgSizes(new QMenu(this)), picPreviewPlayer(new ctlSmilPlayer),
      cmdPresentation(new QToolButton), lblProblems(new QLabel), m_sizeRow(new QWidget) {
    setObjectName(QStringLiteral("frmPreview"));
    lblText->setObjectName(QStringLiteral("lblText"));
    cmdPlay->setObjectName(QStringLiteral("cmdPlay"));
    lblTime->setObjectName(QStringLiteral("lblTime"));
    lblSlideImageSize->setObjectName(QStringLiteral("lblSlideImageSize"));
    cmdImgSize->setObjectName(QStringLiteral("cmdImgSize"));
    lstImgSizes->setObjectName(QStringLiteral("lstImgSizes"));
    picPreviewPlayer->setObjectName(QStringLiteral("picPreviewPlayer"));
    cmdPresentation->setObjectName(QStringLiteral("cmdPresentation"));
    lblProblems->setObjectName(QStringLiteral("lblProblems"));
    lblProblems->setWordWrap(true);
    lblProblems->hide();
    auto* presentations = new QMenu(cmdPresentation);
    m_playPresentation = presentations->addAction(QString(), this, &frmPreview::StartPresentation);
    m_openPresentation = presentations->addAction(QString(), this, &frmPreview::openPresentation);
    cmdPresentation->setMenu(presentations);
    cmdPresentation->setPopupMode(QToolButton::InstantPopup);
    picPreviewPlayer->hide();
    picPhone->setScreenWidget(picPreviewPlayer);
    lblText->setWordWrap(true);
    lblText->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    cmdImgSize->setMenu(lstImgSizes);
    cmdImgSize->setPopupMode(QToolButton::InstantPopup);
    auto* content = new QWidget;
    buildLayout(content);
    setWidget(content);
    connect(cmdPlay, &QPushButton::clicked, this, [this] {
        if (picPreviewPlayer->isPlaying())
            return stopPresentation();
        m_playing ? emit StopPlayer() : emit StartPlayer();
    });
    connect(picPreviewPlayer, &ctlSmilPlayer::stopped, this, &frmPreview::presentationStopped);
    connect(picPreviewPlayer, &ctlSmilPlayer::positionChanged, this,
            &frmPreview::DisplayPreviewTime);
    connect(picPhone, &PhoneView::contextMenuRequested, this, &frmPreview::showPhoneMenu);
    connect(this, &QDockWidget::topLevelChanged, this,
            [this](bool floating) { emit Dock(!floating); });
    for (const QKeySequence& keys :
         {QKeySequence(Qt::Key_Escape), QKeySequence(Qt::ALT | Qt::Key_F4)})
        connect(new QShortcut(keys, this, nullptr, nullptr, Qt::WidgetWithChildrenShortcut),
                &QShortcut::activated, this, &QWidget::close);
    TranslateForm();
}

void frmPreview::buildLayout(QWidget* content) {
    auto* play = new QHBoxLayout;
    play->addWidget(cmdPlay);
    play->addWidget(lblTime, 1);
    play->addWidget(cmdPresentation);
    auto* sizes = new QHBoxLayout(m_sizeRow);
    sizes->setContentsMargins(0, 0, 0, 0);
    sizes->addWidget(lblSlideImageSize, 1);
    sizes->addWidget(cmdImgSize);
    auto* layout = new QVBoxLayout(content);
    layout->addWidget(picPhone, 1);
    layout->addWidget(lblText);
    layout->addWidget(lblProblems);
    layout->addLayout(play);
    layout->addWidget(m_sizeRow);
}

void frmPreview::TranslateForm() {
    setWindowTitle(text("STR_PREVIEW_TITLE", "Preview"));
    cmdPlay->setText(m_playing ? text("STR_STOP", "Stop") : text("STR_PLAY", "Play"));
    cmdPlay->setAccessibleName(m_playing ? text("STR_PREVIEW_STOP", "Stop the message")
                                         : text("STR_PREVIEW_PLAY", "Play the message"));
    cmdImgSize->setText(text("STR_SLIDE_IMAGE_SIZE", "Picture size"));
    cmdImgSize->setAccessibleName(cmdImgSize->text());
    picPhone->setAccessibleName(text("STR_PREVIEW_PHONE", "The slide on the phone"));
    lblTime->setAccessibleName(text("STR_PREVIEW_TIME", "Time played"));
    lblText->setAccessibleName(text("STR_PREVIEW_TEXT", "Slide text"));
    lblProblems->setAccessibleName(
        text("STR_PREVIEW_PROBLEMS", "What the presentation could not show"));
    cmdPresentation->setText(text("STR_PREVIEW_PRESENTATIONS", "Presentation"));
    cmdPresentation->setAccessibleName(cmdPresentation->text());
    m_playPresentation->setText(text("STR_PREVIEW_PRESENTATION", "Play as &presentation"));
    m_openPresentation->setText(text("STR_PREVIEW_OPEN_SMIL", "&Open presentation…"));
    fillSizes();
    // The window's translation blanks every named label; they are shown again.
    lblText->setText(m_text);
    lblProblems->setText(m_problems);
    lblSlideImageSize->setText(sizeText(m_slideSize));
    DisplayPreviewTime(m_elapsedMs, m_totalMs);
}

void frmPreview::InitPreview(const PhoneSkin& skin) {
    const QPixmap phone(skin.phonePicture);
    picPhone->setPhone(phone, skin.screen, skin.fillMode);
}

void frmPreview::SetSlideImageSize(int width, int height) {
    m_slideSize = QSize(width, height);
    lblSlideImageSize->setText(sizeText(m_slideSize));
    for (QAction* action : lstImgSizes->actions())
        action->setChecked(action->data().toString() == sizeText(m_slideSize));
}

// "Auto" lets the slide follow the phone; it is shown but changes nothing.
void frmPreview::fillSizes() {
    lstImgSizes->clear();
    const QStringList entries =
        AppGlobals::setting("preferences", "MmsImageSizes", "Auto").split(u';', Qt::SkipEmptyParts);
    for (const QString& entry : entries) {
        QAction* action = lstImgSizes->addAction(
            entry == QLatin1String("Auto") ? text("STR_AUTO_SIZE", "Auto") : entry);
        action->setData(entry);
        action->setCheckable(true);
        action->setChecked(entry == sizeText(m_slideSize));
        connect(action, &QAction::triggered, this, [this, entry] { chooseSize(entry); });
    }
}

void frmPreview::chooseSize(const QString& entry) {
    const QStringList parts = entry.split(u'x');
    const int width = parts.value(0).toInt();
    const int height = parts.value(1).toInt();
    if (parts.size() == 2 && width > 0 && height > 0)
        emit SlidePictureSizeChanged(width, height);
    SetSlideImageSize(m_slideSize.width(), m_slideSize.height());
}

void frmPreview::DockPreview(bool dock) {
    setFloating(!dock || !m_dockingEnabled);
}

void frmPreview::setDockingEnabled(bool enabled) {
    m_dockingEnabled = enabled;
    setAllowedAreas(enabled ? Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea
                            : Qt::NoDockWidgetArea);
    if (!enabled)
        setFloating(true);
}

void frmPreview::SetPreviewPicture(const QImage& picture) {
    picPhone->setSlide(picture);
}

void frmPreview::SetPreviewPictureFile(const QString& path) {
    picPhone->setSlide(QImage(path));
}

void frmPreview::SetPreviewSlideText(const QString& text) {
    m_text = text;
    lblText->setText(text);
    picPhone->setAccessibleDescription(text);
}

void frmPreview::PlayerStarted() {
    m_playing = true;
    cmdPresentation->setEnabled(false);
    lstImgSizes->hide();
    m_sizeRow->hide();
    TranslateForm();
}

void frmPreview::PlayerStopped() {
    m_playing = false;
    cmdPresentation->setEnabled(true);
    m_sizeRow->show();
    TranslateForm();
}

void frmPreview::DisplayPreviewTime(qint64 elapsedMs, qint64 totalMs) {
    m_elapsedMs = elapsedMs;
    m_totalMs = totalMs;
    lblTime->setText(PreviewClock::timeText(elapsedMs, totalMs));
}

QString frmPreview::phoneMenuDescriptor() const {
    const bool loop = AppGlobals::setting("preferences", "PreviewLoop", "0") == QLatin1String("1");
    return text("MNU_SLIDE_DOWNLOAD_PICTURE", "Send picture to phone…") + u';' +
           QString::number(DownloadPicture) + u',' + QString(loop ? "#" : "") +
           text("STR_PREVIEW_LOOP", "Play in a loop") + u';' + QString::number(Loop);
}

void frmPreview::showPhoneMenu(const QPoint& globalPos) {
    lstImgSizes->hide();
    const int command =
        clsPopupMenu(this).PopupStringXY(phoneMenuDescriptor(), globalPos.x(), globalPos.y());
    if (command == DownloadPicture)
        emit ShowDownloadPicture();
    if (command != Loop)
        return;
    clsPropertiesXML* settings = AppGlobals::settings();
    const bool loop = settings->GetProp("preferences", "PreviewLoop", "0") == QLatin1String("1");
    settings->SetProp("preferences", "PreviewLoop", loop ? "0" : "1");
}

void frmPreview::restorePosition() {
    const QStringList position =
        AppGlobals::setting("preferences", "PreviewPosition", "-1;-1").split(u';');
    const QPoint place(position.value(0).toInt(), position.value(1).toInt());
    if (place.x() <= 0 || place.y() <= 0)
        return;
    const QScreen* screen = QGuiApplication::screenAt(place);
    if (screen && screen->availableGeometry().contains(QRect(place, frameGeometry().size())))
        move(place);
}

bool frmPreview::playPresentation(const QString& smilPath) {
    if (m_playing)
        return false;
    const bool read = picPreviewPlayer->open(smilPath);
    showProblems(picPreviewPlayer->problems());
    if (!read)
        return false;
    m_stillTime = {m_elapsedMs, m_totalMs};
    picPreviewPlayer->show();
    PlayerStarted();
    picPreviewPlayer->play();
    return true;
}

void frmPreview::stopPresentation() {
    picPreviewPlayer->stop();
}

void frmPreview::presentationStopped() {
    picPreviewPlayer->hide();
    PlayerStopped();
    showProblems(picPreviewPlayer->problems());
    DisplayPreviewTime(m_stillTime.first, m_stillTime.second);
}

void frmPreview::openPresentation() {
    DialogService::FileRequest request;
    request.title = text("STR_PREVIEW_OPEN_SMIL_TITLE", "Open presentation");
    request.filter = DialogService::qtFilter(text("STR_SMIL_FILTER", "Presentations|*.smil;*.smi"));
    const QString path = DialogService::fileDialog(this, request);
    if (!path.isEmpty())
        playPresentation(path);
}

void frmPreview::showProblems(const QStringList& problems) {
    QStringList shown = problems.mid(0, kProblemsShown);
    if (problems.size() > kProblemsShown)
        shown << QStringLiteral("…");
    m_problems = shown.join(u'\n');
    lblProblems->setText(m_problems);
    lblProblems->setVisible(!m_problems.isEmpty());
}

void frmPreview::closeEvent(QCloseEvent* event) {
    stopPresentation();
    if (isFloating())
        if (clsPropertiesXML* settings = AppGlobals::settings())
            settings->SetProp("preferences", "PreviewPosition",
                              QString::number(x()) + u';' + QString::number(y()));
    QDockWidget::closeEvent(event);
    emit ClosePreview();
}
