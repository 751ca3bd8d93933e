#pragma once

#include "PhoneSkin.h"

#include <QDockWidget>
#include <utility>

class PhoneView;
class ctlSmilPlayer;
class QLabel;
class QMenu;
class QPushButton;
class QToolButton;

// The message as it looks on a phone: the slide's picture in the phone's
// screen, its text under it, the play time, and the chooser of the slide
// picture size. It docks beside the main window or floats; the main window
// drives it and answers its events.
class frmPreview : public QDockWidget {
    Q_OBJECT
public:
    explicit frmPreview(QWidget* parent = nullptr);

    void TranslateForm();
    void InitPreview(const PhoneSkin& skin);
    void SetSlideImageSize(int width, int height);
    void DockPreview(bool dock);
    void setDockingEnabled(bool enabled);
    bool DockingEnabled() const { return m_dockingEnabled; }
    void SetPreviewPicture(const QImage& picture);
    void SetPreviewPictureFile(const QString& path);
    void SetPreviewSlideText(const QString& text);
    void PlayerStarted();
    void PlayerStopped();
    void DisplayPreviewTime(qint64 elapsedMs, qint64 totalMs);
    // Puts a floating preview where "PreviewPosition" says, when it fits a screen.
    void restorePosition();
    PhoneView* phone() const { return picPhone; }
    ctlSmilPlayer* player() const { return picPreviewPlayer; }
    // Plays a SMIL presentation on the phone's screen. False, with the
    // reason shown under the phone, when it cannot be read.
    bool playPresentation(const QString& smilPath);
    void stopPresentation();
    // What the presentation could not show, under the phone; none hides it.
    void showProblems(const QStringList& problems);

signals:
    void ShowDownloadPicture();
    void Dock(bool docked);
    void StartPlayer();
    void StopPlayer();
    void ClosePreview();
    void SlidePictureSizeChanged(int width, int height);
    // The user asked to see the message played as the presentation it exports.
    void StartPresentation();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void buildLayout(QWidget* content);
    void fillSizes();
    void chooseSize(const QString& entry);
    void showPhoneMenu(const QPoint& globalPos);
    QString phoneMenuDescriptor() const;
    void openPresentation();
    void presentationStopped();

    PhoneView* picPhone;
    QLabel* lblText;
    QPushButton* cmdPlay;
    QLabel* lblTime;
    QLabel* lblSlideImageSize;
    QToolButton* cmdImgSize;
    QMenu* lstImgSizes;
    ctlSmilPlayer* picPreviewPlayer;
    QToolButton* cmdPresentation;
    QAction* m_playPresentation;
    QAction* m_openPresentation;
    QLabel* lblProblems;
    QWidget* m_sizeRow;
    QSize m_slideSize{160, 120};
    QString m_text;
    QString m_problems;
    // The time shown before a presentation played, shown again after it.
    std::pair<qint64, qint64> m_stillTime{0, 0};
    qint64 m_elapsedMs = 0;
    qint64 m_totalMs = 0;
    bool m_playing = false;
    bool m_dockingEnabled = true;
};
