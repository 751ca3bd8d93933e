#include "PlainFileName.h"
#include "AtomicFile.h"
#include "QtPrinters.h"
#include "XmlText.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {
class PlainFileNameTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_root.isValid());
        QDir().mkpath(folder());
        write(folder() + "/in.jpg", "inside");
        write(m_root.path() + "/out.jpg", "outside");
    }
    QString folder() const { return m_root.path() + "/set"; }
    static void write(const QString& path, const QByteArray& bytes) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QTemporaryDir m_root;
};
} // namespace

TEST_F(PlainFileNameTest, OnlyPlainNamesPass) {
    for (const QString& name :
         QStringList{"in.jpg", "Slide 1.txt", "..hidden", "a..b", "Grüße.amr"})
        EXPECT_TRUE(PlainFileName::isPlain(name)) << name.toStdString();
    for (const QString& name :
         QStringList{"", ".", "..", "../in.jpg", "a/b.jpg", "/etc/passwd", "a\\b.jpg", "C:\\x.jpg",
                     "x\x01.jpg", QString("x") + QChar(0) + ".jpg", QString(300, 'n')})
        EXPECT_FALSE(PlainFileName::isPlain(name)) << name.toStdString();
}

TEST_F(PlainFileNameTest, LinksAndOtherKindsAreNotFollowed) {
    ASSERT_TRUE(QFile::link(m_root.path() + "/out.jpg", folder() + "/link.jpg"));
    ASSERT_TRUE(QFile::link("in.jpg", folder() + "/near.jpg")) << "even one that stays inside";
    ASSERT_EQ(mkfifo(QFile::encodeName(folder() + "/pipe.jpg").constData(), 0600), 0);
    QDir().mkpath(folder() + "/sub.jpg");

    EXPECT_EQ(PlainFileName::existingFile(folder(), "in.jpg"), folder() + "/in.jpg");
    for (const QString& name : {"link.jpg", "near.jpg", "pipe.jpg", "sub.jpg", "none.jpg"}) {
        QString why;
        EXPECT_TRUE(PlainFileName::existingFile(folder(), name, &why).isEmpty())
            << name.toStdString();
        EXPECT_TRUE(why.contains(name)) << why.toStdString();
        QFile file;
        EXPECT_FALSE(PlainFileName::open(folder(), name, file));
        EXPECT_FALSE(PlainFileName::copy(folder(), name, m_root.path() + "/copy.jpg"));
    }
    EXPECT_FALSE(QFile::exists(m_root.path() + "/copy.jpg"));
    ASSERT_TRUE(PlainFileName::copy(folder(), "in.jpg", m_root.path() + "/copy.jpg"));
    QFile copy(m_root.path() + "/copy.jpg");
    ASSERT_TRUE(copy.open(QIODevice::ReadOnly));
    EXPECT_EQ(copy.readAll(), "inside");
}

TEST_F(PlainFileNameTest, AtomicFileRefusesWhatIsNoRegularFile) {
    const QString pipe = m_root.path() + "/pipe";
    ASSERT_EQ(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    QString why;
    EXPECT_FALSE(AtomicFile::writeFile(pipe, "x", &why));
    EXPECT_TRUE(why.contains("not a regular file")) << why.toStdString();
    EXPECT_FALSE(AtomicFile::writeFile(folder(), "x", &why));
    EXPECT_TRUE(why.contains("folder")) << why.toStdString();
    struct stat info {};
    ASSERT_EQ(lstat(QFile::encodeName(pipe).constData(), &info), 0);
    EXPECT_TRUE(S_ISFIFO(info.st_mode));

    ASSERT_TRUE(QFile::link(m_root.path() + "/out.jpg", m_root.path() + "/to-out"));
    EXPECT_TRUE(AtomicFile::writeFile(m_root.path() + "/to-out", "new", &why));
    QFile target(m_root.path() + "/out.jpg");
    ASSERT_TRUE(target.open(QIODevice::ReadOnly));
    EXPECT_EQ(target.readAll(), "new") << "a link to a file is written through";
}

TEST(XmlTextTest, ControlCharactersGoTabsAndLineBreaksStay) {
    EXPECT_EQ(XmlText::clean(QString("a\x01"
                                     "b\x07"
                                     "c\x0b"
                                     "d\x1f"
                                     "e\x7f")),
              "abcde\x7f");
    EXPECT_EQ(XmlText::clean("tab\tline\r\nend"), "tab\tline\r\nend");
    const QString emoji = QString::fromUtf8("smile \xF0\x9F\x98\x80");
    EXPECT_TRUE(XmlText::isClean(emoji));
    EXPECT_EQ(XmlText::clean(emoji), emoji);
    const QString lone = QString("x") + QChar(0xD800) + "y" + QChar(0xFFFE);
    EXPECT_FALSE(XmlText::isClean(lone));
    EXPECT_TRUE(XmlText::isClean(XmlText::clean(lone)));
}
