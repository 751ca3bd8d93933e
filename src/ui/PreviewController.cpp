#include "PreviewController.h"

#include "AppGlobals.h"
#include "DialogService.h"
#include "MessageDocument.h"
#include "PhoneSkin.h"
#include "SlidePanel.h"
#include "SlideRenderer.h"
#include "ToolTabs.h"
#include "clsMMSManager.h"
#include "clsMessage.h"
#include "clsPropertiesXML.h"
#include "ctlMainMenu.h"
#include "ctlPictureEditor.h"
#include "ctlSlideThumbs.h"
#include "ctlSmilPlayer.h"
#include "frmPreview.h"

#include <QMainWindow>
#include <QTimer>

namespace {
enum PreviewMode { Docked = 0, Floating = 1, Closed = 2 };

QString preference(const char* key, const char* fallback) {
    return AppGlobals::setting("preferences", key, QString::fromLatin1(fallback));
}

void setPreference(const char* key, const QString& value) {
    if (clsPropertiesXML* settings = AppGlobals::settings())
        settings->SetProp("preferences", key, value);
}
} // namespace

PreviewController::PreviewController(const Window& window, QObject* parent)
    : QObject(parent), m_window(window), mFrmPreview(new frmPreview(window.main)),
      m_clock(*window.document) {
    m_window.main->addDockWidget(Qt::LeftDockWidgetArea, mFrmPreview);
    if (auto* strip = m_window.main->findChild<QDockWidget*>("dockSlides"))
        m_window.main->splitDockWidget(strip, mFrmPreview, Qt::Vertical);
    connect(mFrmPreview, &frmPreview::StartPlayer, &m_clock, &PreviewClock::start);
    connect(mFrmPreview, &frmPreview::StopPlayer, &m_clock, &PreviewClock::stop);
    connect(mFrmPreview, &frmPreview::Dock, this, &PreviewController::mFrmPreview_Dock);
    connect(mFrmPreview, &frmPreview::ClosePreview, this,
            &PreviewController::mFrmPreview_ClosePreview);
    connect(mFrmPreview, &frmPreview::SlidePictureSizeChanged, this,
            &PreviewController::mFrmPreview_SlidePictureSizeChanged);
    connect(mFrmPreview, &frmPreview::ShowDownloadPicture, this,
            &PreviewController::downloadPictureRequested);
    connect(mFrmPreview, &frmPreview::StartPresentation, this,
            &PreviewController::playPresentation);
    connect(&m_clock, &PreviewClock::started, this, &PreviewController::playerStarted);
    connect(&m_clock, &PreviewClock::stopped, this, &PreviewController::playerStopped);
    connect(&m_clock, &PreviewClock::slideDue, this, &PreviewController::slideDue);
    connect(&m_clock, &PreviewClock::timeChanged, this, &PreviewController::showTime);
}

void PreviewController::TranslateForm() {
    mFrmPreview->TranslateForm();
}

void PreviewController::applySettings() {
    applySkin();
    const QSize size = SlideRenderer::surfaceFromSettings();
    mFrmPreview->SetSlideImageSize(size.width(), size.height());
    if (preference("ShowPreview", "1") != QLatin1String("1")) {
        mFrmPreview->hide();
        return;
    }
    const bool floating = preference("PreviewMode", "0").toInt() == Floating;
    mFrmPreview->DockPreview(!floating);
    if (!floating) {
        mFrmPreview->show();
        return showCurrentSlide();
    }
    // A floating preview shown before its window would end up behind it.
    QTimer::singleShot(0, mFrmPreview, [this] {
        mFrmPreview->show();
        mFrmPreview->restorePosition();
        mFrmPreview->raise();
        showCurrentSlide();
    });
}

// The phone of the skin; a picture the skin names but lacks is said once, and
// the preview goes on without it.
void PreviewController::applySkin() {
    const PhoneSkin skin = PhoneSkin::fromSettings();
    const QPixmap back(skin.backPicture);
    if (!skin.missing.isEmpty() || (!skin.backPicture.isEmpty() && back.isNull()))
        DialogService::messageBox(
            m_window.main, QStringLiteral("The background bitmap could not be loaded!"),
            QStringLiteral("InitSkin"), QMessageBox::Ok, QMessageBox::Warning);
    const QColor plain = m_window.main->palette().color(QPalette::Window);
    m_window.menu->SetBackground(back, plain);
    m_window.tools->SetBackground(back, plain);
    if (skin.slideSize.isValid() && !skin.slideSize.isEmpty())
        setPreference("PhoneImageSize", QString::number(skin.slideSize.width()) + u',' +
                                            QString::number(skin.slideSize.height()) +
                                            QStringLiteral(",0"));
    mFrmPreview->InitPreview(skin);
}

void PreviewController::togglePlaying() {
    if (mFrmPreview->player()->isPlaying())
        return mFrmPreview->stopPresentation();
    if (m_clock.isPlaying())
        return m_clock.stop();
    m_window.editor->SaveDrawObjects();
    m_clock.start();
}

// The message as it leaves the program: exported as SMIL, as the user would
// export it, and played from there. A failed export is said under the phone.
void PreviewController::playPresentation() {
    clsMessage* message = m_window.document->message();
    if (!message || m_clock.isPlaying())
        return;
    m_window.editor->SaveDrawObjects();
    const QString folder =
        m_presentations.subFolder(QStringLiteral("play") + QString::number(++m_presentationCount));
    const QString smil = folder + QStringLiteral("message.smil");
    clsMMSManager& manager = *m_window.manager;
    if (folder.isEmpty() || manager.ExportMMS(*message, clsMMSManager::ExportSmil, 0, smil, true) !=
                                clsMMSManager::ExportOk) {
        mFrmPreview->showProblems(
            {folder.isEmpty() ? m_presentations.errorString() : manager.GetExportImportStatus()});
        return;
    }
    mFrmPreview->playPresentation(smil);
}

void PreviewController::showPreview() {
    const int saved = preference("PreviewModeSaved", "0").toInt();
    setPreference("ShowPreview", QStringLiteral("1"));
    setPreference("PreviewMode", QString::number(saved == Floating ? Floating : Docked));
    applySettings();
}

QImage PreviewController::slidePicture(int slide) const {
    const clsMessage* message = m_window.document->message();
    if (!message || slide < 1 || slide > message->Slides().Count())
        return QImage();
    const clsSlide& shown = message->Slides().Item(slide);
    const QSize surface = SlideRenderer::surfaceFromSettings();
    return shown.image().isNull()
               ? SlideRenderer(message->Path(), surface).render(shown.DrawObjects(), surface)
               : shown.image();
}

void PreviewController::showCurrentSlide() {
    if (mFrmPreview->isHidden())
        return;
    const int slide = m_window.document->currentSlide();
    const clsMessage* message = m_window.document->message();
    mFrmPreview->SetPreviewPicture(slidePicture(slide));
    mFrmPreview->SetPreviewSlideText(message && slide >= 1 && slide <= message->Slides().Count()
                                         ? message->Slides().Item(slide).Text()
                                         : QString());
    if (!m_clock.isPlaying())
        mFrmPreview->DisplayPreviewTime(0, message ? message->Slides().TotalDuration() : 0);
}

void PreviewController::mFrmPreview_Dock(bool docked) {
    if (mFrmPreview->isVisible())
        setPreference("PreviewMode", QString::number(docked ? Docked : Floating));
}

// Closing stops the message and remembers how the preview was shown, for
// when it is shown again.
void PreviewController::mFrmPreview_ClosePreview() {
    m_clock.stop();
    const int mode = mFrmPreview->isFloating() ? Floating : Docked;
    setPreference("PreviewModeSaved", QString::number(mode));
    setPreference("PreviewMode", QString::number(Closed));
    setPreference("ShowPreview", QStringLiteral("0"));
}

void PreviewController::mFrmPreview_SlidePictureSizeChanged(int width, int height) {
    setPreference("MmsImageSize", QString::number(width) + u'x' + QString::number(height));
    mFrmPreview->SetSlideImageSize(width, height);
    emit slideSizeChanged(QSize(width, height));
    showCurrentSlide();
}

void PreviewController::setCommandsEnabled(bool enabled) {
    m_window.menu->MenuEnabled(ctlMainMenu::FileMenu, enabled);
    m_window.menu->MenuEnabled(ctlMainMenu::SlideMenu, enabled);
    m_window.strip->setRightClickMenuEnabled(enabled);
    m_window.panel->setSlideButtonsEnabled(enabled);
    m_window.panel->setPreviewPlaying(!enabled);
}

void PreviewController::playerStarted() {
    setCommandsEnabled(false);
    mFrmPreview->PlayerStarted();
}

void PreviewController::playerStopped() {
    m_sound.stop();
    setCommandsEnabled(true);
    mFrmPreview->PlayerStopped();
    const clsMessage* message = m_window.document->message();
    m_window.panel->showTotal(message ? message->Slides().TotalDuration() : 0);
    showCurrentSlide();
}

// The slide becomes the current one, so the editor and the strip follow the
// play; its sound, when it has one, plays from the start (an AMR through its
// WAV copy). A sound that cannot play leaves the slide silent, unasked.
void PreviewController::slideDue(int slide) {
    m_window.editor->SaveDrawObjects();
    m_window.document->setCurrentSlide(slide);
    showCurrentSlide();
    m_sound.stop();
    const clsMessage* message = m_window.document->message();
    const QString sound = message ? message->Slides().Item(slide).Sound() : QString();
    QString why;
    if (!sound.isEmpty())
        m_sound.play(m_window.manager->GetWorkFolderPath() + sound, &why);
}

void PreviewController::showTime(qint64 elapsedMs, qint64 totalMs) {
    if (mFrmPreview->isVisible())
        mFrmPreview->DisplayPreviewTime(elapsedMs, totalMs);
    else
        m_window.panel->showPlayTime(elapsedMs, totalMs);
}
