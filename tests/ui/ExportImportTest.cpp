#include "AppGlobals.h"
#include "DialogService.h"
#include "FileCommands.h"
#include "FolderPrint.h"
#include "MainWindowFixture.h"
#include "MessageDocument.h"
#include "MessageExport.h"
#include "MmsPartReader.h"
#include "ProgramRun.h"
#include "UnwritableFolder.h"
#include "clsMessage.h"
#include "clsPropertiesXML.h"
#include "clsXMLocalizer.h"
#include "ctlMainMenu.h"
#include "frmExport.h"
#include "frmImport.h"

#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>

// The export and import dialogs, opened from the File menu and driven with
// clicks and keys; what they write is read back by the program's own readers.
class ExportImportTest : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        setting("ExportImport", "1");
        m_out = dataFile("out/");
        QDir().mkpath(m_out);
    }

    // Opens the File menu by Alt and its letter ("&File", "&Datei") and
    // chooses the item by the keyboard.
    void chooseFromFileMenu(int number) {
        window().activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
        const QString title = window().mainMenu()->actions().first()->text();
        const QChar letter = title.at(title.indexOf(u'&') + 1).toUpper();
        QTest::keyClick(&window(), Qt::Key(letter.unicode()), Qt::AltModifier);
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(menu, nullptr) << "no menu open";
        for (QAction* action : menu->actions())
            if (action->data().toInt() == number && !action->isSeparator()) {
                ASSERT_TRUE(action->isEnabled());
                menu->setActiveAction(action);
                QTest::keyClick(menu, Qt::Key_Return);
                return;
            }
        QStringList items;
        for (QAction* action : menu->actions())
            items << action->text() + "=" + action->data().toString();
        FAIL() << "no item " << number << " in " << items.join(' ').toStdString();
    }
    // The export dialog, opened from the menu with path chosen in its file dialog.
    frmExport* openExport(const QString& path, int filter = -1) {
        DialogService::queueFileAnswer(path, filter);
        chooseFromFileMenu(ctlMainMenu::Export);
        return window().findChild<frmExport*>();
    }
    frmImport* openImport(const QString& path) {
        DialogService::queueFileAnswer(path);
        chooseFromFileMenu(ctlMainMenu::Import);
        return window().findChild<frmImport*>();
    }
    static void clickRun(FileJobDialog* dialog) {
        ASSERT_NE(dialog, nullptr);
        QTest::mouseClick(dialog->findChild<QPushButton*>("cmdRun"), Qt::LeftButton);
    }
    static QString status(FileJobDialog* dialog) {
        return dialog->findChild<QLabel*>("lblStatus")->text();
    }
    static QString cancelText(FileJobDialog* dialog) {
        return dialog->findChild<QPushButton*>("cmdCancel")->text().remove(u'&');
    }
    // Closes the dialog by Escape and lets it go.
    static void closeByEscape(FileJobDialog* dialog) {
        QTest::keyClick(dialog, Qt::Key_Escape);
        EXPECT_FALSE(dialog->isVisible());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    MessageDocument& document() { return window().document(); }
    // Slides of 3000, 1500 and 2500 ms with the texts "one", "two" and "three".
    void threeSlides() {
        const QList<QPair<qint64, QString>> slides{{3000, "one"}, {1500, "two"}, {2500, "three"}};
        for (int i = 0; i < slides.size(); ++i) {
            if (i > 0) {
                ASSERT_TRUE(document().appendSlide());
            }
            ASSERT_TRUE(document().setSlideDuration(slides[i].first));
            ASSERT_TRUE(document().setSlideText(slides[i].second));
        }
    }
    // Duration and text of every slide of the open message.
    QStringList slides() {
        QStringList result;
        for (const auto& slide : document().message()->Slides())
            result << QString::number(slide->Duration()) + " " + slide->Text();
        return result;
    }
    QStringList outEntries() const {
        return QDir(m_out).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    }
    static QByteArray bytes(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QString m_out;
};

TEST_F(ExportImportTest, TheMenuOffersBothOnlyWhenTheSettingsSay) {
    setting("ExportImport", "0");
    window();
    QCoreApplication::processEvents();
    EXPECT_FALSE(window().mainMenu()->descriptor(ctlMainMenu::FileMenu).contains(";6,"));
    m_window.reset();
    setting("ExportImport", "1");
    const QString file = window().mainMenu()->descriptor(ctlMainMenu::FileMenu);
    EXPECT_TRUE(file.contains(",Export;6,Import;5,")) << file.toStdString();
}

TEST_F(ExportImportTest, AnExistingSetIsReplacedOnlyOnYes) {
    threeSlides();
    frmExport* dialog = openExport(m_out + "card.smil", 0);
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(DialogService::answeredFileDialogs().size(), 1) << "the file dialog opened at once";
    EXPECT_EQ(dialog->kind(), MessageExport::Smil);
    EXPECT_EQ(cancelText(dialog), "Cancel");
    clickRun(dialog);
    EXPECT_TRUE(status(dialog).startsWith("The message has been exported."))
        << status(dialog).toStdString();
    EXPECT_EQ(cancelText(dialog), "Close");
    EXPECT_EQ(bytes(m_out + "card_001.txt"), "one\r\n");
    closeByEscape(dialog);
    const auto exported = folderFingerprint(m_out);

    document().setCurrentSlide(1);
    ASSERT_TRUE(document().setSlideText("changed"));
    dialog = openExport(m_out + "card.smil", 0);
    DialogService::queueAnswer(QMessageBox::No);
    clickRun(dialog);
    ASSERT_EQ(DialogService::answeredBoxes().size(), 1);
    EXPECT_EQ(DialogService::answeredBoxes().last().text,
              "The file card.smil already exists! \r\nOverwrite it?");
    EXPECT_EQ(status(dialog), "Choose the target file and the export format, then click Export.");
    EXPECT_EQ(cancelText(dialog), "Cancel");
    EXPECT_EQ(folderFingerprint(m_out), exported) << "times and bytes as they were";

    DialogService::queueAnswer(QMessageBox::Yes);
    clickRun(dialog);
    EXPECT_TRUE(status(dialog).startsWith("The message has been exported."))
        << status(dialog).toStdString();
    EXPECT_EQ(bytes(m_out + "card_001.txt"), "changed\r\n");
    EXPECT_EQ(outEntries().filter(QRegularExpression("^\\.")), QStringList()) << "no leftovers";
}

TEST_F(ExportImportTest, AnImportedTemplateOrSetBecomesTheOpenMessage) {
    threeSlides();
    MessageExport exporter(document().manager());
    ASSERT_EQ(exporter.run(*document().message(), MessageExport::Template, 1, m_out + "card.tpl",
                           false, MessageExport::OutputOnly),
              clsMMSManager::ExportOk)
        << exporter.status().toStdString();
    QDir().mkpath(m_out + "set");
    ASSERT_EQ(exporter.run(*document().message(), MessageExport::Smil, 0, m_out + "set/mms.smil",
                           false, MessageExport::OutputOnly),
              clsMMSManager::ExportOk);
    const QStringList exported = slides();

    // The message is modified: the import asks first, and Cancel keeps it.
    frmImport* dialog = openImport(m_out + "card.tpl");
    ASSERT_NE(dialog, nullptr);
    DialogService::queueAnswer(QMessageBox::Cancel);
    clickRun(dialog);
    EXPECT_EQ(DialogService::answeredBoxes().last().text, "Save the changes?");
    EXPECT_EQ(
        status(dialog),
        "Choose a SMIL file, a template or a received message (.mms, .wap), then click Import.");
    EXPECT_EQ(slides(), exported);
    EXPECT_TRUE(document().isModified());

    DialogService::queueAnswer(QMessageBox::No);
    clickRun(dialog);
    EXPECT_EQ(status(dialog), "The message has been imported.");
    EXPECT_EQ(cancelText(dialog), "Close");
    // Written in seconds, the durations come back as whole seconds, halves to even.
    EXPECT_EQ(slides(), QStringList({"3000 one", "2000 two", "2000 three"}));
    EXPECT_EQ(document().currentSlide(), 1);
    EXPECT_FALSE(document().isModified());
    EXPECT_EQ(window().windowTitle(), "Untitled.mms -Vellumo");
    closeByEscape(dialog);

    dialog = openImport(m_out + "set/mms.smil");
    clickRun(dialog);
    EXPECT_EQ(status(dialog), "The message has been imported.");
    EXPECT_EQ(slides(), exported);
    closeByEscape(dialog);
    // What is open is saved as any message, and reads back so.
    DialogService::queueFileAnswer(m_out + "again.mms");
    QTest::keyClick(&window(), Qt::Key_S, Qt::ControlModifier);
    const QString info = cliInfo(m_out + "again.mms");
    EXPECT_TRUE(info.contains("name: import\n")) << info.toStdString();
    EXPECT_TRUE(info.contains("slide 2: duration 1500 ms")) << info.toStdString();
    EXPECT_TRUE(info.contains("  text: \"three\"")) << info.toStdString();
}

TEST_F(ExportImportTest, PackagesAndBinaryMessagesReadBack) {
    threeSlides();
    // The file dialog's filter chooses the kind; the name is the user's.
    frmExport* dialog = openExport(m_out + "card", MessageExport::Package);
    EXPECT_EQ(dialog->kind(), MessageExport::Package);
    EXPECT_EQ(dialog->fileName(), QDir::toNativeSeparators(m_out + "card.SIS"));
    clickRun(dialog);
    ASSERT_TRUE(status(dialog).startsWith("The message has been exported."))
        << status(dialog).toStdString();
    const ProgramRun reader = runProgram(
        VELLUMO_PYTHON3, {VELLUMO_SOURCE_DIR "/tests/tools/sis_reader.py", m_out + "card.SIS"});
    ASSERT_EQ(reader.code, 0) << reader.err.toStdString();
    const QJsonObject package = QJsonDocument::fromJson(reader.out.toUtf8()).object();
    EXPECT_TRUE(package["checksum_ok"].toBool());
    QStringList installed;
    for (const QJsonValue& file : package["files"].toArray())
        installed << file.toObject()["destination"].toString().section(u'\\', -1);
    installed.sort();
    EXPECT_EQ(installed, QStringList({"mms.smil", "texts.xml"})) << "texts travel in the index";

    // The kind chosen in the dialog renames the file to match.
    QComboBox* kinds = dialog->findChild<QComboBox*>("cboKind");
    kinds->setFocus();
    QTest::keyClick(kinds, Qt::Key_Down);
    EXPECT_EQ(dialog->kind(), MessageExport::SentMms);
    EXPECT_EQ(dialog->fileName(), QDir::toNativeSeparators(m_out + "card.wap"));
    clickRun(dialog);
    QTest::keyClick(kinds, Qt::Key_Down);
    dialog->setFileName(m_out + "in");
    clickRun(dialog);
    EXPECT_EQ(outEntries(), QStringList({"card.SIS", "card.wap", "in.wap"}));
    EXPECT_EQ(bytes(m_out + "card.wap").left(2), QByteArray("\x8c\x80")) << "m-send-req";
    EXPECT_EQ(bytes(m_out + "in.wap").left(2), QByteArray("\x8c\x84")) << "m-retrieve-conf";
    MmsPartReader parts;
    ASSERT_TRUE(parts.read(bytes(m_out + "in.wap"))) << parts.error().toStdString();
    QStringList texts;
    for (const MmsPartReader::Part& part : parts.parts())
        if (part.name.endsWith(".txt"))
            texts << QString::fromUtf8(part.data).trimmed();
    EXPECT_EQ(texts, QStringList({"one", "two", "three"}));
    // The chosen kind and folder are there next time.
    EXPECT_EQ(AppGlobals::setting("preferences", "ExportFilterIndex", ""), "4");
    EXPECT_EQ(AppGlobals::setting("preferences", "ExportLastDir", ""), dataFile("out"));
}

TEST_F(ExportImportTest, AnUnwritableFolderIsNamedAndGetsNothing) {
    threeSlides();
    const UnwritableFolder locked(m_out);
    if (!locked.holds())
        GTEST_SKIP() << "no way to make a folder unwritable here";
    frmExport* dialog = openExport(m_out + "card.tpl", MessageExport::Template);
    clickRun(dialog);
    EXPECT_TRUE(status(dialog).startsWith(
        "The message cannot be exported to the selected file.\n\nNothing can be written into "
        "the folder " +
        QDir::toNativeSeparators(dataFile("out"))))
        << status(dialog).toStdString();
    EXPECT_EQ(cancelText(dialog), "Close");
    EXPECT_EQ(outEntries(), QStringList());
}

TEST_F(ExportImportTest, AFileThatIsNoPresentationLeavesTheMessage) {
    threeSlides();
    const QStringList before = slides();
    writeFile(m_out + "notes.smil", "just some notes, no presentation");
    writeFile(m_out + "notes.tpl", "no archive either");
    for (const char* name : {"notes.smil", "notes.tpl"}) {
        DialogService::queueAnswer(QMessageBox::No);
        frmImport* dialog = openImport(m_out + name);
        clickRun(dialog);
        EXPECT_TRUE(status(dialog).startsWith("The file could not be imported. It is not a "
                                              "readable SMIL or template file.\n\n"))
            << status(dialog).toStdString();
        EXPECT_EQ(cancelText(dialog), "Close");
        EXPECT_EQ(slides(), before) << name;
        EXPECT_TRUE(document().isModified()) << "the open message is still the user's own";
        closeByEscape(dialog);
    }
}

TEST_F(ExportImportTest, TheKeyboardReachesEverythingAndEnterRuns) {
    setting("AutoShowExportImportFileDlg", "0");
    threeSlides();
    chooseFromFileMenu(ctlMainMenu::Export);
    frmExport* dialog = window().findChild<frmExport*>();
    ASSERT_NE(dialog, nullptr);
    EXPECT_TRUE(DialogService::answeredFileDialogs().isEmpty());
    // The closing menu hands the activation back before the dialog takes it.
    QTest::qWait(100);
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog));
    auto* file = dialog->findChild<QLineEdit*>("txtFile");
    QTest::keyClick(dialog, Qt::Key_F, Qt::AltModifier);
    ASSERT_EQ(QApplication::focusWidget(), file);
    EXPECT_FALSE(dialog->findChild<QPushButton*>("cmdRun")->isEnabled()) << "no file yet";
    QTest::keyClicks(file, m_out + "typed");
    QStringList chain;
    for (int step = 0; step < 6; ++step) {
        QWidget* focused = QApplication::focusWidget();
        ASSERT_NE(focused, nullptr);
        EXPECT_FALSE(focused->accessibleName().isEmpty() &&
                     qobject_cast<QPushButton*>(focused) == nullptr)
            << focused->objectName().toStdString();
        chain << focused->objectName();
        QTest::keyClick(focused, Qt::Key_Tab);
    }
    EXPECT_EQ(chain, QStringList({"txtFile", "cmdBrowse", "cboKind", "cboDurations", "cmdRun",
                                  "cmdCancel"}));
    EXPECT_EQ(QApplication::focusWidget(), file) << "round to the start";
    QTest::keyClick(dialog, Qt::Key_A, Qt::AltModifier);
    EXPECT_EQ(QApplication::focusWidget(), dialog->findChild<QComboBox*>("cboKind"));
    QTest::keyClick(dialog, Qt::Key_D, Qt::AltModifier);
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_Down);
    QTest::keyClick(dialog, Qt::Key_F, Qt::AltModifier);
    QTest::keyClick(file, Qt::Key_Return);
    EXPECT_TRUE(status(dialog).startsWith("The message has been exported."))
        << status(dialog).toStdString();
    EXPECT_TRUE(bytes(m_out + "typed.smil").contains("dur=\"1.500s\"")) << "seconds were chosen";
    closeByEscape(dialog);
}

// English and German, each mnemonic once per dialog, before and after a run;
// the grabs go to $VELLUMO_SHOTS when it names a folder.
TEST_F(ExportImportTest, TheDialogsSpeakTheUsersLanguage) {
    setting("AutoShowExportImportFileDlg", "0");
    const QString shots = qEnvironmentVariable("VELLUMO_SHOTS");
    for (const QString& language : {QStringLiteral("en-us"), QStringLiteral("de-de")}) {
        // The window follows the language of the settings, as after a restart.
        setting("Language", language);
        auto localizer = std::make_unique<clsXMLocalizer>(*AppGlobals::settings());
        ASSERT_TRUE(localizer->SetLanguage(language));
        AppGlobals::installLocalizer(std::move(localizer));
        m_window.reset();
        for (const int number : {ctlMainMenu::Export, ctlMainMenu::Import}) {
            chooseFromFileMenu(number);
            auto* dialog = window().findChild<FileJobDialog*>();
            ASSERT_NE(dialog, nullptr);
            QCoreApplication::processEvents();
            QStringList letters;
            for (QWidget* control : dialog->findChildren<QWidget*>()) {
                const QString text = control->property("text").toString();
                const qsizetype amp = text.indexOf(u'&');
                if (amp >= 0)
                    letters << text.mid(amp + 1, 1).toLower();
                if (control->focusPolicy() != Qt::NoFocus) {
                    EXPECT_FALSE(control->accessibleName().isEmpty() && text.isEmpty())
                        << control->objectName().toStdString();
                }
            }
            EXPECT_EQ(letters.size(), number == ctlMainMenu::Export ? 6 : 4)
                << language.toStdString();
            EXPECT_EQ(QSet<QString>(letters.begin(), letters.end()).size(), letters.size())
                << letters.join(' ').toStdString();
            EXPECT_EQ(dialog->windowTitle(),
                      language == "de-de"
                          ? (number == ctlMainMenu::Export ? "Nachricht exportieren"
                                                           : "Nachricht importieren")
                          : (number == ctlMainMenu::Export ? "Export message" : "Import message"));
            const QString shot =
                shots + (number == ctlMainMenu::Export ? "/export-" : "/import-") + language;
            if (!shots.isEmpty())
                dialog->grab().save(shot + ".png");
            // A run's outcome is said in the language too, and Cancel becomes Close.
            dialog->setFileName(m_out + (number == ctlMainMenu::Export ? language : "none.smil"));
            clickRun(dialog);
            EXPECT_EQ(cancelText(dialog), language == "de-de" ? "Schließen" : "Close");
            EXPECT_TRUE(status(dialog).startsWith(
                number == ctlMainMenu::Export
                    ? (language == "de-de" ? "Die Nachricht wurde exportiert."
                                           : "The message has been exported.")
                    : (language == "de-de" ? "Die Datei konnte nicht importiert werden."
                                           : "The file could not be imported.")))
                << status(dialog).toStdString();
            if (!shots.isEmpty())
                dialog->grab().save(shot + "-done.png");
            closeByEscape(dialog);
        }
    }
}

// A message as it is received, in a file named as the program's own, opens
// with its slides; saving it asks for a new file instead of replacing it.
TEST_F(ExportImportTest, AReceivedMessageNamedDotMmsOpensButIsNotOverwritten) {
    setting("CreationMode", "Free");
    threeSlides();
    MessageExport exporter(document().manager());
    const QString received = m_out + "received.mms";
    ASSERT_EQ(exporter.run(*document().message(), MessageExport::ReceivedMms, 0, received, false,
                           MessageExport::OutputOnly),
              clsMMSManager::ExportOk)
        << exporter.status().toStdString();
    const QByteArray sent = bytes(received);
    DialogService::queueAnswer(QMessageBox::No); // do not save the changes
    ASSERT_TRUE(window().fileCommands()->open(received));
    EXPECT_EQ(slides(), QStringList({"3000 one", "1500 two", "2500 three"}));
    EXPECT_EQ(window().windowTitle(), "Untitled.mms -Vellumo");

    DialogService::queueFileAnswer(m_out + "own.mms");
    QTest::keyClick(&window(), Qt::Key_S, Qt::ControlModifier);
    EXPECT_EQ(DialogService::answeredFileDialogs().size(), 1) << "Save asks for a file";
    EXPECT_EQ(bytes(received), sent);
    EXPECT_TRUE(cliInfo(m_out + "own.mms").contains("  text: \"three\""));
}
