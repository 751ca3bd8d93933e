#pragma once

#include <QTabWidget>
#include <array>

class QPushButton;
class clsPropertiesXML;
class ctlAudioRecorder;
class ctlBrowser;

// The tool tabs beside the slide: the four media browsers (backgrounds,
// pictures, animations, sounds), the recorder and the text properties. Each browser is set
// up with its kind, caption, patterns and folder from the settings; the tab
// shown and each browser's folder are kept for the next start.
class ToolTabs : public QTabWidget {
    Q_OBJECT
public:
    explicit ToolTabs(QWidget* textPanel, QWidget* parent = nullptr);

    // Folders, the extended mode and the tab shown, from the settings.
    void applySettings();
    // Each browser's folder, for the next start.
    void keepSettings(clsPropertiesXML& settings) const;
    void TranslateControl();
    // The browser of a kind (ctlBrowser::ThumbType).
    ctlBrowser* browser(int thumbType) const;
    ctlAudioRecorder* recorder() const { return m_recorder; }
    // The skin's background behind every tab: the browsers, the recorder
    // and the text properties.
    void SetBackground(const QPixmap& picture, const QColor& colour);

signals:
    // A file the user chose in a browser (Add or Browse) for the current slide.
    void fileChosen(int thumbType, const QString& path);
    // The pictures tab's way to the picture browser window.
    void pictureBrowserRequested();

private:
    struct Setup;
    static const std::array<Setup, 4>& setups();
    void addBrowser(const Setup& setup);

    std::array<ctlBrowser*, 4> m_browsers{};
    QPushButton* m_pictureBrowser;
    ctlAudioRecorder* m_recorder;
    QWidget* m_textPanel;
};
