#include "AppGlobals.h"
#include "DialogService.h"
#include "MainWindowFixture.h"
#include "TransferOptions.h"
#include "clsPropertiesXML.h"
#include "clsXMLocalizer.h"
#include "ctlMainMenu.h"
#include "frmAbout.h"
#include "frmPictureBrowser.h"
#include "frmSettings.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QTabWidget>
#include <QTest>
#include <QTextBrowser>

// The settings dialog as the user meets it: opened from the menu, typed
// into, and closed by its three buttons; what it wrote is read from the
// settings file on disk.
class SettingsDialogTest : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        auto localizer = std::make_unique<clsXMLocalizer>(*AppGlobals::settings());
        ASSERT_TRUE(localizer->SetLanguage("en-us"));
        AppGlobals::installLocalizer(std::move(localizer));
        window();
        ASSERT_TRUE(AppGlobals::settings()->SaveXmlFile());
    }
    frmSettings* open() {
        window().mainMenu()->MenuClick(ctlMainMenu::Settings);
        frmSettings* dialog = window().settingsDialog();
        EXPECT_TRUE(dialog && dialog->isVisible());
        return dialog;
    }
    template <typename Control> Control* control(frmSettings* dialog, const char* key) {
        QWidget* found = dialog->control(key);
        return found ? (qobject_cast<Control*>(found) ? qobject_cast<Control*>(found)
                                                      : found->findChild<Control*>())
                     : nullptr;
    }
    static void typeInto(QWidget* field, const QString& text) {
        field->setFocus();
        QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
        QTest::keyClicks(field, text);
    }
    static void press(frmSettings* dialog, QDialogButtonBox::StandardButton which) {
        QTest::mouseClick(dialog->findChild<QDialogButtonBox*>()->button(which), Qt::LeftButton);
    }
    static QByteArray settingsFile() {
        return readFile(AppGlobals::settings()->XmlFileName()).toUtf8();
    }
    static QString stored(const char* key, const char* section = "preferences") {
        clsPropertiesXML reread;
        reread.Initialize(AppGlobals::settings()->XmlFileName(), "Vellumo");
        return reread.GetProp(section, key, "<none>");
    }
};

TEST_F(SettingsDialogTest, CancelAfterChangesLeavesTheSettingsAsTheyWere) {
    const QByteArray before = settingsFile();
    frmSettings* dialog = open();
    typeInto(control<QSpinBox>(dialog, "JpgQuality"), "55");
    control<QCheckBox>(dialog, "AskDeleteSlide")->click();
    control<QComboBox>(dialog, "ImageFormat")->setCurrentIndex(2);
    press(dialog, QDialogButtonBox::Cancel);
    QCoreApplication::processEvents();
    EXPECT_EQ(window().settingsDialog(), nullptr);
    EXPECT_EQ(settingsFile(), before) << "the file is not touched";
    EXPECT_EQ(AppGlobals::setting("preferences", "JpgQuality", ""), "90");
    EXPECT_EQ(AppGlobals::setting("preferences", "AskDeleteSlide", ""), "1");
}

TEST_F(SettingsDialogTest, ApplyAndOkWriteTheFileAndTheWindowTakesThemOn) {
    const bool offered = window().mainMenu()->exportImportEnabled();
    frmSettings* dialog = open();
    typeInto(control<QSpinBox>(dialog, "JpgQuality"), "75");
    typeInto(control<QSpinBox>(dialog, "MaxRecordTime"), "60");
    control<QCheckBox>(dialog, "ExportImport")->click();
    auto* unit = control<QComboBox>(dialog, "MMSTimeFormat");
    unit->setCurrentIndex(unit->findData("s"));
    dialog->findChild<QTabWidget*>()->setCurrentIndex(3);
    press(dialog, QDialogButtonBox::Apply);
    EXPECT_TRUE(dialog->isVisible()) << "Apply keeps the dialog";
    EXPECT_EQ(stored("JpgQuality"), "75");
    EXPECT_EQ(stored("MaxRecordTime"), "60000") << "shown in seconds, kept in milliseconds";
    EXPECT_EQ(stored("MMSTimeFormat"), "s");
    EXPECT_EQ(stored("SettingsTab"), "3");
    EXPECT_NE(window().mainMenu()->exportImportEnabled(), offered);

    typeInto(control<QLineEdit>(dialog, "SisDownloadDeviceId"), "zentor7610");
    press(dialog, QDialogButtonBox::Ok);
    QCoreApplication::processEvents();
    EXPECT_EQ(window().settingsDialog(), nullptr);
    EXPECT_EQ(stored("SisDownloadDeviceId"), "zentor7610");
    EXPECT_EQ(open()->findChild<QTabWidget*>()->currentIndex(), 3) << "the tab is remembered";
}

// Typed values out of range never reach the file, and a value of the wrong
// shape stops the whole write with the reason.
TEST_F(SettingsDialogTest, BadValuesAreRefusedAndNothingIsWritten) {
    frmSettings* dialog = open();
    auto* quality = control<QSpinBox>(dialog, "JpgQuality");
    typeInto(quality, "500");
    auto* limit = control<QSpinBox>(dialog, "MaxRecordTime");
    typeInto(limit, "-5");
    EXPECT_LE(quality->value(), 100);
    EXPECT_GE(limit->value(), 1);

    const QByteArray before = settingsFile();
    typeInto(control<QSpinBox>(dialog, "JpgQuality"), "40");
    typeInto(control<QLineEdit>(dialog, "MmsImageSizes"), "Auto;160x120;big");
    dialog->findChild<QTabWidget*>()->setCurrentIndex(0);
    DialogService::queueAnswer(QMessageBox::Ok);
    press(dialog, QDialogButtonBox::Ok);
    ASSERT_EQ(DialogService::answeredBoxes().size(), 1);
    EXPECT_TRUE(DialogService::answeredBoxes()[0].text.contains("width x height"));
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(dialog->findChild<QTabWidget*>()->currentIndex(), 1) << "the bad value is shown";
    EXPECT_EQ(settingsFile(), before);
    EXPECT_EQ(AppGlobals::setting("preferences", "JpgQuality", ""), "90")
        << "not even the good values are taken";

    typeInto(control<QLineEdit>(dialog, "MmsImageSizes"), "Auto;160x120;640x480");
    press(dialog, QDialogButtonBox::Apply);
    EXPECT_EQ(stored("MmsImageSizes"), "Auto;160x120;640x480");
    EXPECT_EQ(stored("JpgQuality"), "40");
    EXPECT_EQ(control<QComboBox>(dialog, "MmsImageSize")->count(), 3)
        << "the new sizes are offered at once";
}

TEST_F(SettingsDialogTest, GermanRetitlesEveryOpenWindowWithoutARestart) {
    frmPictureBrowser* browser = window().pictureBrowser();
    browser->show();
    const QString englishBrowser = browser->windowTitle();
    frmSettings* dialog = open();
    auto* language = control<QComboBox>(dialog, "Language");
    language->setCurrentIndex(language->findData("de-de"));
    press(dialog, QDialogButtonBox::Apply);
    EXPECT_EQ(dialog->windowTitle(), "Einstellungen");
    EXPECT_EQ(dialog->findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Cancel)->text(),
              "Abbrechen");
    EXPECT_EQ(window().mainMenu()->actions().first()->text(), "&Datei");
    EXPECT_NE(browser->windowTitle(), englishBrowser);
    EXPECT_EQ(stored("Language"), "de-de");
}

// Without a command of its own, this system sends with the desktop's
// Bluetooth sender, and the dialog shows and keeps that command.
TEST_F(SettingsDialogTest, TheSendCommandOfThisSystemIsTheBluetoothSender) {
    EXPECT_EQ(irDaCommandline(*AppGlobals::settings()), "bluetooth-sendto \"%f%\"");
    frmSettings* dialog = open();
    auto* command = control<QLineEdit>(dialog, irDaFamily().toLatin1().constData());
    ASSERT_NE(command, nullptr);
    EXPECT_EQ(command->text(), "bluetooth-sendto \"%f%\"");
    typeInto(command, "obexftp --put");
    DialogService::queueAnswer(QMessageBox::Ok);
    press(dialog, QDialogButtonBox::Apply);
    EXPECT_EQ(DialogService::answeredBoxes().size(), 1) << "a command without %f% sends nothing";
    typeInto(command, "obexftp --put \"%f%\"");
    press(dialog, QDialogButtonBox::Apply);
    EXPECT_EQ(irDaCommandline(*AppGlobals::settings()), "obexftp --put \"%f%\"");
}

TEST_F(SettingsDialogTest, AboutNamesTheVersionAndTheLibrariesWithTheirLicences) {
    window().mainMenu()->MenuClick(ctlMainMenu::About);
    auto* about = window().findChild<frmAbout*>();
    ASSERT_NE(about, nullptr);
    EXPECT_EQ(about->findChild<QLabel*>("lblVersion")->text(),
              "Vellumo version: " + QApplication::applicationVersion());
    const QString libraries = about->findChild<QTextBrowser*>("txtLibraries")->toPlainText();
    for (const char* named : {"Qt 6", "pugixml", "libarchive", "FFmpeg", "OpenOBEX", "LGPL"})
        EXPECT_TRUE(libraries.contains(named)) << named;
}

// The content class and creation mode come from the program's own table
// and are written by name, as the checker reads them.
TEST_F(SettingsDialogTest, TheContentClassAndCreationModeAreChosenByName) {
    frmSettings* dialog = open();
    auto* classes = control<QComboBox>(dialog, "ContentClass");
    ASSERT_EQ(classes->count(), 8);
    EXPECT_EQ(classes->currentData().toString(), "Image Rich");
    classes->setCurrentIndex(classes->findData("Image Basic"));
    auto* modes = control<QComboBox>(dialog, "CreationMode");
    EXPECT_EQ(modes->currentData().toString(), "Warning");
    modes->setCurrentIndex(modes->findData("Restricted"));
    press(dialog, QDialogButtonBox::Ok);
    EXPECT_EQ(stored("ContentClass"), "Image Basic");
    EXPECT_EQ(stored("CreationMode"), "Restricted");
}
