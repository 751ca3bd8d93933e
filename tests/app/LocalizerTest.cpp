#include "LocaleInfo.h"
#include "TempDataHome.h"
#include "clsPropertiesXML.h"
#include "clsXMLocalizer.h"

#include <QAction>
#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRadioButton>
#include <QWidget>

namespace {
const QByteArray kLanguageFile = R"(<?xml version="1.0" encoding="utf-8"?>
<langtab>
  <forms>
    <form name="frmTest" caption="Test window">
      <control name="cmdOK" index=""><caption>OK</caption><text>Accept</text></control>
      <control name="optType" index="2"><caption>Second</caption><text>Second kind</text></control>
      <control name="optType" index="0"><caption>First</caption></control>
      <control name="fraBox"><caption>Box</caption><ignored>not used</ignored></control>
      <control name="chkLoop" index=""><caption>Loop</caption></control>
      <control name="mnuFile" index=""><caption>File</caption></control>
      <control name="mnuFileExit" index=""><caption>Exit</caption><text>Leave</text></control>
    </form>
  </forms>
  <strings>
    <string name="STR_LINES"><text>Line%nnext %0</text></string>
    <string name="STR_MANY"><text>%10|%1|%0</text></string>
    <string name="STR_HELLO"><text>Hello</text></string>
  </strings>
</langtab>
)";
} // namespace

class LocalizerTest : public TempDataHome {
protected:
    void SetUp() override {
        TempDataHome::SetUp();
        writeFile(programFile("language/xx-test.xml"), kLanguageFile);
        writeFile(programFile("language/broken.xml"), "<langtab><strings>");
        settings.Initialize(dataFile("settings.xml"), "");
        settings.SetProp("paths", "language", "\\language\\");
        settings.SetProp("languages", "xx-test", "Test,1");
        settings.SetProp("languages", "off-test", "Off,0");
        settings.SetProp("languages", "broken", "Broken,1");
        settings.SetProp("languages", "en-us", "English,1");
    }

    clsPropertiesXML settings;
};

TEST_F(LocalizerTest, LanguagesComeFromTheRegistry) {
    clsXMLocalizer localizer(settings);
    EXPECT_EQ(localizer.GetLangPath(), programFile("language/"));
    EXPECT_FALSE(localizer.SetLanguage("zz-unknown"));
    EXPECT_EQ(localizer.GetLanguage(), "");

    EXPECT_TRUE(localizer.SetLanguage("xx-test"));
    EXPECT_EQ(localizer.GetString("STR_HELLO"), "Hello");
    EXPECT_FALSE(localizer.SetLanguage("zz-unknown"));
    EXPECT_EQ(localizer.GetLanguage(), "xx-test") << "an unknown code keeps the language";

    EXPECT_TRUE(localizer.SetLanguage("off-test"));
    EXPECT_EQ(localizer.GetLanguage(), "en-us") << "a switched-off language loads English";
    EXPECT_EQ(localizer.GetString("APP_PRODUCTNAME"), "Vellumo");

    EXPECT_TRUE(localizer.IsLanguageInstalled("xx-test"));
    EXPECT_FALSE(localizer.IsLanguageInstalled("off-test"));
    EXPECT_FALSE(localizer.IsLanguageInstalled("zz-unknown"));

    const auto available = localizer.GetAvaliableLanguage();
    ASSERT_EQ(available.size(), 3);
    EXPECT_EQ(available[0].first, "xx-test");
    EXPECT_EQ(available[0].second, "Test");
    EXPECT_EQ(available[1].first, "broken");
}

TEST_F(LocalizerTest, ABrokenLanguageFileFallsBackToEnglishTexts) {
    clsXMLocalizer localizer(settings);
    EXPECT_TRUE(localizer.SetLanguage("broken"));
    EXPECT_FALSE(localizer.loadError().isEmpty());
    EXPECT_EQ(localizer.languageFileName(), programFile("language/en-us.xml"));
    EXPECT_EQ(localizer.GetString("STR_UNTITLED"), "Untitled");
}

TEST_F(LocalizerTest, WhatATranslationLacksOrBreaksComesFromEnglishAndIsToldOnce) {
    writeFile(programFile("language/gap-test.xml"), R"(<langtab><strings>
        <string name="STR_READY"><text>Bereit</text></string>
        <string name="STR_EXPORT_TARGET_EXISTS"><text>Die Datei %1 gibt es schon.</text></string>
        </strings></langtab>)");
    settings.SetProp("languages", "gap-test", "Gaps,1");
    static QStringList warnings;
    warnings.clear();
    const QtMessageHandler previous = qInstallMessageHandler(
        [](QtMsgType, const QMessageLogContext&, const QString& message) { warnings << message; });
    clsXMLocalizer localizer(settings);
    const bool set = localizer.SetLanguage("gap-test");
    qInstallMessageHandler(previous);
    ASSERT_TRUE(set);
    EXPECT_EQ(localizer.GetString("STR_READY"), "Bereit");
    // The parameter the translation lost would have left the file's name out.
    EXPECT_EQ(localizer.GetStringPar("STR_EXPORT_TARGET_EXISTS", {"a.smil"}),
              "The file a.smil already exists.");
    EXPECT_EQ(localizer.GetString("STR_ERROR"), "Error");
    ASSERT_EQ(warnings.size(), 1) << warnings.join('\n').toStdString();
    EXPECT_TRUE(warnings[0].contains("gap-test.xml") && warnings[0].contains("missing") &&
                warnings[0].contains("STR_EXPORT_TARGET_EXISTS"))
        << warnings[0].toStdString();
}

TEST_F(LocalizerTest, ParametersAndLineBreaksAreReplacedInOrder) {
    clsXMLocalizer localizer(settings);
    localizer.SetLanguage("xx-test");
    EXPECT_EQ(localizer.GetStringPar("STR_LINES", {"A"}), "Line\r\nnext A");
    // "%10" is taken by parameter 1 before parameter 10 is reached.
    QStringList eleven;
    for (int i = 0; i <= 10; ++i)
        eleven << "p" + QString::number(i);
    EXPECT_EQ(localizer.GetStringPar("STR_MANY", eleven), "p10|p1|p0");
    EXPECT_EQ(localizer.GetStringPar("STR_MISSING", {"A"}), "");
    EXPECT_EQ(localizer.GetString("STR_MISSING"), "");
}

TEST_F(LocalizerTest, TranslateFormSetsCaptionsAndToolTipsByControlKind) {
    clsXMLocalizer localizer(settings);
    localizer.SetLanguage("xx-test");

    QWidget window;
    window.setObjectName("frmTest");
    auto* ok = new QPushButton("old", &window);
    ok->setObjectName("cmdOK");
    auto* second = new QRadioButton("old", &window);
    second->setObjectName("optType");
    second->setProperty("index", 2);
    auto* first = new QRadioButton("old", &window);
    first->setObjectName("optType");
    first->setProperty("index", 0);
    first->setToolTip("kept");
    auto* box = new QGroupBox("old", &window);
    box->setObjectName("fraBox");
    auto* loop = new QCheckBox("old", box);
    loop->setObjectName("chkLoop");
    auto* missing = new QLabel("old", &window);
    missing->setObjectName("lblMissing");
    auto* edit = new QLineEdit("typed", &window);
    edit->setObjectName("txtMessage");
    auto* menu = new QMenu("old", &window);
    menu->setObjectName("mnuFile");
    QAction* exit = menu->addAction("old");
    exit->setObjectName("mnuFileExit");
    auto* unnamed = new QLabel("unnamed", &window);

    EXPECT_TRUE(localizer.TranslateForm(&window));
    EXPECT_EQ(window.windowTitle(), "Test window");
    EXPECT_EQ(ok->text(), "OK");
    EXPECT_EQ(ok->toolTip(), "Accept");
    EXPECT_EQ(second->text(), "Second");
    EXPECT_EQ(second->toolTip(), "Second kind");
    EXPECT_EQ(first->text(), "First");
    EXPECT_EQ(first->toolTip(), "kept") << "a missing tool tip leaves the old one";
    EXPECT_EQ(box->title(), "Box");
    EXPECT_EQ(loop->text(), "Loop");
    EXPECT_EQ(missing->text(), "") << "a missing caption blanks the control";
    EXPECT_EQ(edit->text(), "typed") << "text boxes are not translated";
    EXPECT_EQ(menu->title(), "File");
    EXPECT_EQ(exit->text(), "Exit");
    EXPECT_EQ(exit->toolTip(), "Leave");
    EXPECT_EQ(unnamed->text(), "unnamed");
    EXPECT_EQ(clsXMLocalizer::controlKey("frmMain", "cmdOK", "", "caption"),
              "frmMain_cmdOK__caption");
}

TEST_F(LocalizerTest, FontsChangeOnlyOutsideEnglishLocales) {
    clsXMLocalizer localizer(settings);
    localizer.SetLanguage("xx-test");
    QWidget window;
    window.setObjectName("frmTest");
    auto* label = new QLabel(&window);
    label->setObjectName("cmdOK");
    QFont small("DejaVu Sans");
    small.setPointSize(8);
    label->setFont(small);

    localizer.TranslateForm(&window);
    EXPECT_EQ(label->font().family(), "DejaVu Sans");
    EXPECT_EQ(localizer.GetDefaultCharSet(), 0);

    LocaleInfo::setSystemLocale(QLocale(QLocale::Japanese, QLocale::Japan));
    localizer.TranslateForm(&window);
    EXPECT_EQ(label->font().family(), QString::fromUtf8("ＭＳ Ｐゴシック"));
    EXPECT_EQ(label->font().pointSize(), 9) << "East-Asian faces get at least nine points";
    EXPECT_EQ(localizer.GetDefaultCharSet(), 128);

    LocaleInfo::setSystemLocale(QLocale(QLocale::Russian, QLocale::Russia));
    EXPECT_EQ(localizer.GetDefaultCharSet(), 204);
    LocaleInfo::setSystemLocale(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(localizer.GetDefaultCharSet(), 0);
    LocaleInfo::setSystemLocale(QLocale(QLocale::Thai, QLocale::Thailand));
    EXPECT_EQ(localizer.GetDefaultCharSet(), 1);

    QFont big("DejaVu Sans", 14);
    EXPECT_EQ(clsXMLocalizer::SetProperFont(big, 936), 134);
    EXPECT_EQ(big.pointSize(), 14) << "larger fonts keep their size";
    EXPECT_EQ(clsXMLocalizer::SetProperFont(big, 1251), 204);
    EXPECT_EQ(big.family(), QString::fromUtf8("宋体")) << "the system keeps the face";
}
