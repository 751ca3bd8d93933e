#pragma once

#include "clsMMSManager.h"

#include <QDockWidget>
#include <QMainWindow>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <memory>

class ClassGuard;
class ClassSizeLabel;
class FileCommands;
class MessageDocument;
class PreviewController;
class QLabel;
class QProgressBar;
class SlideCommands;
class SlidePanel;
class SlideSoundPlayer;
class SoundAttacher;
class TextPropertiesPanel;
class ToolTabs;
class ctlMainMenu;
class ctlPictureEditor;
class ctlSlideThumbs;
class frmPictureBrowser;
class frmSettings;
class PhoneConnection;
class RecoveryJournal;
class WorkFolderClaim;

// The composer's main window. It composes the menu bar, the slide strip, the
// slide panel and the status bar around one MessageDocument, and hands every
// command to the group of commands that owns it; it holds no editing logic.
class frmMain : public QMainWindow {
    Q_OBJECT
public:
    explicit frmMain(QWidget* parent = nullptr);
    ~frmMain() override;

    // The file name or "Untitled.mms", then " -" and the application title.
    QString windowCaption() const;
    void TranslateForm();
    void bringToFront();
    // Opens the message file the command line names; a new message otherwise.
    void openCommandLine(const QString& commandLine);
    // The arguments another copy of the program was started with: its file is
    // opened here, after asking about unsaved changes.
    void openHandedArguments(const QStringList& arguments);
    // The first argument of a kept command line, quotes taken off.
    static QString fileFromCommandLine(const QString& commandLine);

    MessageDocument& document() const { return *m_document; }
    clsMMSManager& manager() { return m_manager; }
    ctlMainMenu* mainMenu() const { return m_menu; }
    ctlSlideThumbs* slideStrip() const { return m_thumbs; }
    SlidePanel* slidePanel() const { return m_panel; }
    ctlPictureEditor* pictureEditor() const { return m_editor; }
    TextPropertiesPanel* textProperties() const { return m_textPanel; }
    ToolTabs* toolTabs() const { return m_tools; }
    // The picture browser window, made when it is first asked for.
    frmPictureBrowser* pictureBrowser();
    void showPictureBrowser();
    FileCommands* fileCommands() const { return m_files; }
    ClassGuard* classGuard() const { return m_guard; }
    ClassSizeLabel* sizeLabel() const { return m_size; }
    PreviewController* previewer() const { return m_previewer; }
    PhoneConnection* phone() const { return m_phone; }
    // The settings dialog while it is open.
    frmSettings* settingsDialog() const;
    // Takes on the settings as they now stand: language, time unit, menus,
    // browsers, preview and skin, slide picture size.
    void applySettings();

    static QString applicationTitle() { return QStringLiteral("Vellumo"); }

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void claimWorkFolder();
    void buildWindow();
    QDockWidget* dock(const char* name, QWidget* content, Qt::DockWidgetArea area);
    void connectEditor();
    void connectHelp();
    void showSelectedText();
    void putOnSlide(int thumbType, const QString& path);
    void mFrmPictureBrowser_AddPicture(const QString& file);
    void playSlideSound();
    void connectPreview();
    void newMessage();
    void applySlideSize(QSize size);
    void connectDocument();
    void connectControls();
    void onMenuClick(int number);
    void onSlidesChanged();
    void onCurrentSlideChanged(int slide);
    void showSlide(int slide);
    void showStatus();
    void showProgress(int slide, int count);
    void restorePosition();
    void keepSettings();
    void requestExit();
    void showHelp();
    void showAbout();
    void showSettings();
    void sendMessage();
    void sendSlidePicture();
    void applyLanguage();

    std::unique_ptr<WorkFolderClaim> m_claim;
    clsMMSManager m_manager;
    MessageDocument* m_document;
    ctlMainMenu* m_menu;
    ctlSlideThumbs* m_thumbs;
    ctlPictureEditor* m_editor;
    SlidePanel* m_panel;
    TextPropertiesPanel* m_textPanel;
    ToolTabs* m_tools;
    frmPictureBrowser* mFrmPictureBrowser = nullptr;
    QPointer<frmSettings> mFrmSettings;
    std::unique_ptr<SoundAttacher> m_sounds;
    SlideSoundPlayer* m_soundPlayer;
    SlideCommands* m_slides;
    ClassGuard* m_guard;
    FileCommands* m_files;
    PreviewController* m_previewer = nullptr;
    QLabel* m_status;
    QProgressBar* m_progress;
    ClassSizeLabel* m_size = nullptr;
    RecoveryJournal* m_journal = nullptr;
    PhoneConnection* m_phone;
    QTimer TimerExitWait;
    bool m_exitDecided = false;
    int m_shownSlide = 0;
};
