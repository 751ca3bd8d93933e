#include "TransferOptions.h"
#include "TransferTestSupport.h"
#include "clsMMSCommunication.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

// The phone-suite tool cannot run here without a desktop session and a
// paired phone, so a script answers its two calls the way it does.
class PhoneSuiteAdapterTest : public ::testing::Test {
protected:
    void SetUp() override {
        m_tool = m_dir.filePath("phone-tool");
        m_message = m_dir.filePath("Holiday message.tpl");
        QFile file(m_message);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("tpl");
    }

    void makeTool(const QByteArray& devices, int shareExitCode) {
        writeScript(m_tool, "if [ \"$1\" = --list-available ]; then printf '" + devices +
                                "'; exit 0; fi\n"
                                "printf '%s\\n' \"$@\" > \"" +
                                m_dir.filePath("share.txt").toUtf8() + "\"\nexit " +
                                QByteArray::number(shareExitCode) + "\n");
    }

    std::unique_ptr<clsMMSCommunication> connection(const QString& program) {
        TransferOptions options;
        options.suiteProgram = program;
        options.suiteTimeoutMs = 10000;
        auto result = std::make_unique<clsMMSCommunication>(clsMMSCommunication::adapters(options));
        return result;
    }

    QTemporaryDir m_dir;
    QString m_tool;
    QString m_message;
};

TEST_F(PhoneSuiteAdapterTest, WithoutTheToolTheKindIsNotAvailable) {
    EXPECT_EQ(connection("vellumo-no-such-phone-tool")->Initialize(3), 0);
    EXPECT_EQ(connection(m_dir.filePath("not-there"))->Initialize(3), 0);
}

TEST_F(PhoneSuiteAdapterTest, TheFirstReachableDeviceIsThePhoneAndGetsTheFile) {
    makeTool("4f2a9c Pixel of Anna\\n77d0e1 Tablet\\n", 0);
    auto phone = connection(m_tool);
    ASSERT_EQ(phone->Initialize(3), 3);
    ASSERT_TRUE(phone->waitForConnectionKnown(10000));
    EXPECT_TRUE(phone->isConnected());
    EXPECT_EQ(phone->deviceName(), "Pixel of Anna");
    EXPECT_EQ(phone->SendFile(m_message), 0) << phone->lastFailure().toStdString();
    EXPECT_EQ(readAll(m_dir.filePath("share.txt")),
              "--device\n4f2a9c\n--share\n" + m_message.toUtf8() + "\n");
}

TEST_F(PhoneSuiteAdapterTest, NoReachableDeviceMeansNoPhoneAndAFailedShareIsFour) {
    makeTool("", 0);
    auto nobody = connection(m_tool);
    ASSERT_EQ(nobody->Initialize(3), 3);
    ASSERT_TRUE(nobody->waitForConnectionKnown(10000));
    EXPECT_EQ(nobody->SendFile(m_message), 3);

    makeTool("4f2a9c Pixel\\n", 1);
    auto failing = connection(m_tool);
    ASSERT_EQ(failing->Initialize(3), 3);
    ASSERT_TRUE(failing->waitForConnectionKnown(10000));
    EXPECT_EQ(failing->SendFile(m_message), 4);
    EXPECT_TRUE(failing->lastFailure().contains("exit code 1"));
}
