#include "ToolTabs.h"

#include "SkinBackground.h"

#include "AppGlobals.h"
#include "AppPaths.h"
#include "clsPropertiesXML.h"
#include "ctlAudioRecorder.h"
#include "ctlBrowser.h"

#include <QPushButton>
#include <QShortcut>

struct ToolTabs::Setup {
    const char* key; // in "browserPaths", and the archive's folder
    int thumbType;
    const char* captionKey;
    const char* caption;
    const char* patterns;
    const char* icons;
    int stretchMode;
};

// In the order of the tabs.
const std::array<ToolTabs::Setup, 4>& ToolTabs::setups() {
    static const std::array<Setup, 4> table{{
        {"Backgrounds", ctlBrowser::Backgrounds, "STR_BACKGROUND_TITLE", "Backgrounds",
         "*.bmp,*.gif,*.jpg,*.jpeg", "", 0},
        {"Pictures", ctlBrowser::Pictures, "STR_SYMBOLS_TITLE", "Pictures",
         "*.bmp,*.gif,*.jpg,*.jpeg", "", 1},
        {"Animations", ctlBrowser::Animations, "STR_ANIMATION_TITLE", "Animations",
         "*.gif,*.avi,*.mp4", "", 1},
        {"Sounds", ctlBrowser::Sounds, "STR_AUDIO_TITLE", "Sounds",
         "*.wav,MH_*.mid,*.mid,*.midi,MH_*.imy,*.imy,*.mp3,*.amr",
         "101,105,103,103,104,102,106,107", 1},
    }};
    return table;
}

ToolTabs::ToolTabs(QWidget* textPanel, QWidget* parent)
    : QTabWidget(parent), m_pictureBrowser(new QPushButton), m_recorder(new ctlAudioRecorder),
      m_textPanel(textPanel) {
    setObjectName(QStringLiteral("ToolTabs"));
    // Every tab stays in sight, its title shortened when the room is narrow.
    setUsesScrollButtons(false);
    setElideMode(Qt::ElideRight);
    setDocumentMode(true);
    for (const Setup& setup : setups())
        addBrowser(setup);
    addTab(m_recorder, QString());
    addTab(textPanel, QString());
    m_pictureBrowser->setObjectName(QStringLiteral("cmdPictureBrowser"));
    browser(ctlBrowser::Pictures)->addButton(m_pictureBrowser);
    connect(m_pictureBrowser, &QPushButton::clicked, this, &ToolTabs::pictureBrowserRequested);
    // Reached from anywhere in the window, whichever tab is shown.
    auto* shortcut = new QShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_B), this);
    shortcut->setContext(Qt::WindowShortcut);
    connect(shortcut, &QShortcut::activated, this, &ToolTabs::pictureBrowserRequested);
    connect(this, &QTabWidget::currentChanged, this, [](int tab) {
        if (clsPropertiesXML* settings = AppGlobals::settings())
            settings->SetProp("preferences", "SelectedTool", QString::number(tab));
    });
    TranslateControl();
}

void ToolTabs::addBrowser(const Setup& setup) {
    auto* browser = new ctlBrowser;
    browser->setObjectName(QLatin1String("ctlBrowser") + QLatin1String(setup.key));
    browser->SetBrowserThumbType(setup.thumbType);
    browser->SetPictureStretchMode(setup.stretchMode);
    browser->setIcons(QLatin1String(setup.icons));
    m_browsers[size_t(count())] = browser;
    addTab(browser, QString());
    const int kind = setup.thumbType;
    connect(browser, &ctlBrowser::addFile, this,
            [this, kind](const QString& folder, const QString& file) {
                emit fileChosen(kind, folder + file);
            });
    connect(browser, &ctlBrowser::fileBrowsed, this,
            [this, kind](const QString& path) { emit fileChosen(kind, path); });
}

void ToolTabs::applySettings() {
    const bool extended =
        AppGlobals::setting("preferences", "ExtendedBrowser", "0") == QLatin1String("1");
    const QString archive = AppGlobals::programArchive();
    for (size_t i = 0; i < m_browsers.size(); ++i) {
        const QString key = QLatin1String(setups()[i].key);
        const QString folder = AppGlobals::setting("browserPaths", key, QString());
        ctlBrowser* browser = m_browsers[i];
        browser->UseExternalBrowser(extended);
        browser->setFiles(QLatin1String(setups()[i].patterns));
        browser->SetBrowserDefaultDir(folder.isEmpty() ? archive + key
                                                       : AppPaths::programRelative(folder));
    }
    m_recorder->SetMaxRecordTime(
        AppGlobals::setting("preferences", "MaxRecordTime", "300000").toLongLong());
    const int tab = AppGlobals::setting("preferences", "SelectedTool", "0").toInt();
    setCurrentIndex(tab >= 0 && tab < count() ? tab : 0);
}

void ToolTabs::keepSettings(clsPropertiesXML& settings) const {
    for (size_t i = 0; i < m_browsers.size(); ++i)
        settings.SetProp("browserPaths", QLatin1String(setups()[i].key),
                         m_browsers[i]->GetBrowserDir());
}

void ToolTabs::TranslateControl() {
    for (size_t i = 0; i < m_browsers.size(); ++i) {
        const QString caption = AppGlobals::text(setups()[i].captionKey, setups()[i].caption);
        setTabText(int(i), caption);
        m_browsers[i]->setCaption(caption);
        m_browsers[i]->TranslateControl();
    }
    setTabText(indexOf(m_recorder), AppGlobals::text("STR_AUDIO_REC_TITLE", "Recorder"));
    m_recorder->TranslateControl();
    setTabText(indexOf(m_textPanel), AppGlobals::text("STR_TEXT_TITLE", "Text"));
    for (int tab = 0; tab < count(); ++tab)
        widget(tab)->setAccessibleName(tabText(tab));
    m_pictureBrowser->setText(AppGlobals::text("STR_PB_OPEN", "&Photos..."));
    m_pictureBrowser->setToolTip(
        AppGlobals::text("STR_PB_OPEN_TIP",
                         "Pictures of any format, turned and cropped to the slide (Ctrl+Shift+B)"));
}

void ToolTabs::SetBackground(const QPixmap& picture, const QColor& colour) {
    for (int tab = 0; tab < count(); ++tab)
        SkinBackground::apply(widget(tab), picture, colour);
}

ctlBrowser* ToolTabs::browser(int thumbType) const {
    for (ctlBrowser* browser : m_browsers)
        if (browser->thumbType() == thumbType)
            return browser;
    return nullptr;
}
