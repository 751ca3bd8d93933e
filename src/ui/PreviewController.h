#pragma once

#include "PreviewClock.h"
#include "PrivateTempDir.h"
#include "SlideSoundPlayer.h"

#include <QObject>
#include <QSize>

class MessageDocument;
class QMainWindow;
class SlidePanel;
class ToolTabs;
class clsMMSManager;
class ctlMainMenu;
class ctlPictureEditor;
class ctlSlideThumbs;
class frmPreview;

// The preview as the main window runs it: the preview dock shows the
// current slide on the phone, and the clock plays the message slide after
// slide, with each slide's sound, while the commands that would change the
// message are shut. It answers the dock's events and keeps its settings.
class PreviewController : public QObject {
    Q_OBJECT
public:
    struct Window {
        QMainWindow* main;
        MessageDocument* document;
        clsMMSManager* manager;
        ctlPictureEditor* editor;
        SlidePanel* panel;
        ctlMainMenu* menu;
        ctlSlideThumbs* strip;
        ToolTabs* tools;
    };
    explicit PreviewController(const Window& window, QObject* parent = nullptr);

    frmPreview* preview() const { return mFrmPreview; }
    PreviewClock& clock() { return m_clock; }
    bool isPlaying() const { return m_clock.isPlaying(); }
    // Skin, slide picture size and whether and how the preview shows.
    void applySettings();
    void TranslateForm();
    // The play button and the menu: plays, or stops while playing.
    void togglePlaying();
    // Shows the preview again after it was closed, as it was.
    void showPreview();
    // The current slide, as it now is, on the phone.
    void showCurrentSlide();
    // A slide's picture as the phone shows it.
    QImage slidePicture(int slide) const;

signals:
    // The user chose another slide picture size; the settings already hold it.
    void slideSizeChanged(QSize size);
    void downloadPictureRequested();

private:
    void mFrmPreview_Dock(bool docked);
    void mFrmPreview_ClosePreview();
    void mFrmPreview_SlidePictureSizeChanged(int width, int height);
    void playPresentation();
    void playerStarted();
    void playerStopped();
    void slideDue(int slide);
    void showTime(qint64 elapsedMs, qint64 totalMs);
    void applySkin();
    void setCommandsEnabled(bool enabled);

    Window m_window;
    frmPreview* mFrmPreview;
    PreviewClock m_clock;
    SlideSoundPlayer m_sound;
    // Each play exports the message afresh, into a folder of its own.
    PrivateTempDir m_presentations;
    int m_presentationCount = 0;
};
