#include "AppGlobals.h"
#include "DialogService.h"
#include "MainWindowFixture.h"
#include "MessageDocument.h"
#include "PhoneConnection.h"
#include "PhoneFormat.h"
#include "ProgramRun.h"
#include "TransferOptions.h"
#include "TransferTestSupport.h"
#include "clsMMSCommunication.h"
#include "clsPropertiesXML.h"
#include "ctlMainMenu.h"
#include "frmDownloadImage.h"
#include "frmDownloadMMS.h"

#include <QCheckBox>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QTimer>

// The two send dialogs: the message packed and sent, a picture converted and
// sent, each on a connection whose adapter the test drives, and once to a
// real OBEX server.
class SendDialogTest : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        m_connection = std::make_unique<clsMMSCommunication>([this](std::int32_t) {
            auto adapter = std::make_unique<FakeAdapter>();
            m_adapter = adapter.get();
            return adapter;
        });
        m_connection->Initialize(2);
    }
    void TearDown() override {
        m_connection.reset();
        MainWindowFixture::TearDown();
    }
    // Slides with texts, as the user would have them.
    void twoSlides() {
        MessageDocument& document = window().document();
        ASSERT_TRUE(document.setSlideText("one"));
        ASSERT_TRUE(document.appendSlide());
        ASSERT_TRUE(document.setSlideText("two"));
    }
    // Sends the window's message through the test's connection; the adapter
    // accepts and the phone answers at once with done. What was sent is kept
    // in the test's folder under the name it was sent by.
    QString sendMessageTo(const QString& device) {
        m_adapter->reportConnect(false, m_connection->deviceName());
        m_adapter->reportConnect(true, device);
        frmDownloadMMS dialog(*m_connection);
        dialog.SetupDownloadData(&window().manager(), window().document().message());
        QTimer answer;
        QObject::connect(&answer, &QTimer::timeout, m_adapter, [this] {
            if (!m_adapter->sent.isEmpty())
                m_adapter->reportProgress(ConnectionAdapter::kProgressDone);
        });
        answer.start(20);
        dialog.show();
        EXPECT_TRUE(QTest::qWaitFor(
            [&] {
                return dialog.statusText() == "Ready" &&
                       dialog.findChild<QPushButton*>("cmdClose")->isEnabled();
            },
            20000))
            << dialog.statusText().toStdString() << dialog.errorText().toStdString();
        if (m_adapter->sent.isEmpty())
            return QString();
        const QString kept = dataFile(QFileInfo(m_adapter->sent[0]).fileName());
        EXPECT_TRUE(QFile::copy(m_adapter->sent[0], kept));
        return kept;
    }

    std::unique_ptr<clsMMSCommunication> m_connection;
    FakeAdapter* m_adapter = nullptr;
};

TEST_F(SendDialogTest, APhoneThatInstallsPackagesGetsThePackageAndAnyOtherTheTemplate) {
    EXPECT_TRUE(PhoneFormat::wantsPackage("zentor7610", "Zentor"));
    EXPECT_TRUE(PhoneFormat::wantsPackage("ZenTor-X", "Zentor"));
    EXPECT_TRUE(PhoneFormat::wantsPackage("N95", "Zentor;N95"));
    EXPECT_FALSE(PhoneFormat::wantsPackage("other", "Zentor"));
    EXPECT_FALSE(PhoneFormat::wantsPackage("", "Zentor")) << "no device, no package";

    twoSlides();
    const QString package = sendMessageTo("zentor7610");
    EXPECT_EQ(QFileInfo(package).fileName(), "mms.SIS");
    m_adapter->sent.clear();
    const QString archive = sendMessageTo("other");
    EXPECT_EQ(QFileInfo(archive).fileName(), "mms.tpl");
    const ProgramRun listing = runProgram("tar", {"-tf", archive});
    EXPECT_EQ(listing.code, 0);
    EXPECT_TRUE(listing.out.contains("mms.smil")) << listing.out.toStdString();
    EXPECT_FALSE(QFileInfo::exists(window().manager().GetWorkFolderPath() + "mms.tpl"))
        << "the work folder keeps only the message";
}

TEST_F(SendDialogTest, ThePictureGoesAsTheChosenFormatUnderAPlainName) {
    m_adapter->reportConnect(true, "phone");
    QImage picture(64, 48, QImage::Format_RGB32);
    picture.fill(Qt::darkCyan);
    frmDownloadImage dialog(*m_connection);
    dialog.SetDownloadPicture(picture);
    dialog.show();
    EXPECT_TRUE(dialog.findChild<QLabel*>("lblConnect")->text().contains("phone"));
    for (QRadioButton* format : dialog.findChildren<QRadioButton*>())
        if (format->text() == "GIF")
            format->click();
    auto* name = dialog.findChild<QLineEdit*>("txtName");
    EXPECT_EQ(name->text(), "MyImage");
    name->setText("../escape");
    QTest::mouseClick(dialog.findChild<QPushButton*>("cmdSend"), Qt::LeftButton);
    EXPECT_TRUE(m_adapter->sent.isEmpty());
    EXPECT_TRUE(dialog.errorText().startsWith("The picture cannot be converted."));
    EXPECT_EQ(dialog.statusText(), "Nothing has been sent.");

    name->setText("Card");
    QTimer::singleShot(50, m_adapter,
                       [this] { m_adapter->reportProgress(ConnectionAdapter::kProgressDone); });
    QTest::mouseClick(dialog.findChild<QPushButton*>("cmdSend"), Qt::LeftButton);
    ASSERT_EQ(m_adapter->sent.size(), 1);
    EXPECT_EQ(QFileInfo(m_adapter->sent[0]).fileName(), "Card.gif");
    EXPECT_EQ(QImageReader(m_adapter->sent[0]).format(), "gif");
    EXPECT_EQ(QImage(m_adapter->sent[0]).size(), QSize(64, 48));
    EXPECT_EQ(dialog.statusText(), "Ready");
    EXPECT_EQ(AppGlobals::setting("preferences", "ImageDownloadName", ""), "Card");

    // The advanced panel follows its box, and the box's state is kept.
    auto* advanced = dialog.findChild<QCheckBox*>("chkAdvanced");
    const bool shown = advanced->isChecked();
    advanced->click();
    EXPECT_EQ(dialog.findChild<QWidget*>("fraAdvanced")->isVisible(), !shown);
    EXPECT_EQ(AppGlobals::setting("preferences", "ImageDownloadAdvancedShow", ""),
              shown ? "0" : "1");
}

// While one transfer waits for the phone, a second is refused with a
// message in its own dialog, and neither dialog can be closed mid-way.
TEST_F(SendDialogTest, ASecondSendWhileTheFirstWaitsIsTold) {
    m_adapter->reportConnect(true, "phone");
    QImage picture(8, 8, QImage::Format_RGB32);
    picture.fill(Qt::red);
    frmDownloadImage first(*m_connection);
    frmDownloadImage second(*m_connection);
    for (frmDownloadImage* dialog : {&first, &second}) {
        dialog->SetDownloadPicture(picture);
        dialog->show();
    }
    bool closable = true;
    QTimer::singleShot(50, &second, [&] {
        closable = first.findChild<QPushButton*>("cmdClose")->isEnabled();
        first.reject();
        second.sendPicture();
        m_adapter->reportProgress(ConnectionAdapter::kProgressDone);
    });
    first.sendPicture();
    EXPECT_FALSE(closable);
    EXPECT_TRUE(first.isVisible()) << "closing is refused while it sends";
    EXPECT_EQ(second.errorText(),
              "A transfer is still in progress. Please wait until it has finished.");
    EXPECT_EQ(first.statusText(), "Ready");
}

TEST_F(SendDialogTest, WithoutAPhoneTheDialogSaysSoAndStaysOpen) {
    twoSlides();
    setting("CommunicationType", "2");
    AppGlobals::settings()->SetProp("PhoneTransfer", "ObexTarget",
                                    QStringLiteral("tcp:127.0.0.1:%1").arg(closedPort()));
    AppGlobals::settings()->SetProp("PhoneTransfer", "ConnectTimeout", "500");
    window().phone()->setUp();
    window().mainMenu()->MenuClick(ctlMainMenu::SendMessage);
    auto* dialog = window().findChild<frmDownloadMMS*>();
    ASSERT_NE(dialog, nullptr);
    QTRY_VERIFY_WITH_TIMEOUT(!dialog->errorText().isEmpty(), 20000);
    EXPECT_EQ(dialog->errorText(), "No phone is connected.");
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_TRUE(dialog->findChild<QPushButton*>("cmdClose")->isEnabled());
}

TEST_F(SendDialogTest, TheMessageArrivesAtARealObexServer) {
    ObexTestServer server;
    const QString unavailable = startPrivateObexServer(server);
    if (!unavailable.isEmpty())
        GTEST_SKIP() << unavailable.toStdString();
    twoSlides();
    setting("CommunicationType", "2");
    AppGlobals::settings()->SetProp("PhoneTransfer", "ObexTarget", "tcp:127.0.0.1:650");
    window().phone()->setUp();
    QTRY_VERIFY_WITH_TIMEOUT(window().phone()->connection().isConnected(), 10000);
    window().mainMenu()->MenuClick(ctlMainMenu::SendMessage);
    auto* dialog = window().findChild<frmDownloadMMS*>();
    ASSERT_NE(dialog, nullptr);
    QTRY_VERIFY_WITH_TIMEOUT(dialog->statusText() == "Ready" || !dialog->errorText().isEmpty(),
                             30000);
    EXPECT_EQ(dialog->statusText(), "Ready") << dialog->errorText().toStdString();
    QTRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(server.folder() + "/mms.tpl"), 5000);
    const ProgramRun listing = runProgram("tar", {"-tf", server.folder() + "/mms.tpl"});
    EXPECT_TRUE(listing.out.contains("texts.xml")) << server.log().toStdString();
}

// The status bar's lamp: lit and blinking while a phone is there (here the
// send command's program), steady when the settings say so, and a kind of
// connection this computer lacks is said once and written back as off.
TEST_F(SendDialogTest, TheLampFollowsThePhoneAndAMissingKindIsSaid) {
    setting("CommunicationType", "1");
    setting("BlinkLed", "1");
    AppGlobals::settings()->SetProp("IrDaCommand", irDaFamily(), "cat \"%f%\"");
    PhoneConnection* phone = window().phone();
    phone->setUp();
    QTRY_VERIFY_WITH_TIMEOUT(phone->connection().isConnected(), 5000);
    EXPECT_EQ(phone->indicator()->findChild<QLabel*>("lblPhone")->text(), "Phone connected: cat");
    const bool lit = phone->lampLit();
    QTRY_VERIFY_WITH_TIMEOUT(phone->lampLit() != lit, 2000);
    QTRY_VERIFY_WITH_TIMEOUT(phone->lampLit() == lit, 2000);

    setting("BlinkLed", "0");
    phone->setUp();
    QTRY_VERIFY_WITH_TIMEOUT(phone->connection().isConnected(), 5000);
    QTest::qWait(1200);
    EXPECT_TRUE(phone->lampLit()) << "steady";

    setting("CommunicationType", "3");
    AppGlobals::settings()->SetProp("PhoneTransfer", "SuiteProgram", "no-such-phone-suite");
    DialogService::queueAnswer(QMessageBox::Ok);
    phone->setUp();
    ASSERT_EQ(DialogService::answeredBoxes().size(), 1);
    EXPECT_EQ(DialogService::answeredBoxes()[0].title, "Phone connection");
    EXPECT_EQ(AppGlobals::setting("preferences", "CommunicationType", ""), "0");
    EXPECT_EQ(phone->indicator()->findChild<QLabel*>("lblPhone")->text(), "Sending switched off");
    EXPECT_FALSE(phone->lampLit());
}
