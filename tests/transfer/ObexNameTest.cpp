#include "ObexName.h"

#include <gtest/gtest.h>

TEST(ObexName, IsUtf16BigEndianWithATerminatingZero) {
    EXPECT_EQ(ObexName::encode(QStringLiteral("A\u00e9\u20ac")),
              QByteArray("\x00\x41\x00\xe9\x20\xac\x00\x00", 8));
    EXPECT_EQ(ObexName::encode(QString()), QByteArray(2, '\0'));
    // Id, length and text with its zero.
    EXPECT_EQ(ObexName::headerSize(QStringLiteral("ab")), 3 + 6);
}

TEST(ObexName, AShortenedNameKeepsItsExtension) {
    const QString name = QStringLiteral("Holiday message.tpl");
    EXPECT_EQ(ObexName::shortened(name, 19), name) << "a name that fits stays";
    EXPECT_EQ(ObexName::shortened(name, 12), "Holiday.tpl") << "no space before the dot";
    EXPECT_EQ(ObexName::shortened(name, 13), "Holiday m.tpl");
    EXPECT_EQ(ObexName::shortened(name, 5), "H.tpl");
}

TEST(ObexName, WithoutRoomForTheExtensionTheNameIsCut) {
    EXPECT_EQ(ObexName::shortened(QStringLiteral("Holiday message.tpl"), 4), "Holi");
    EXPECT_EQ(ObexName::shortened(QStringLiteral("a.extension"), 6), "a.exte");
    EXPECT_EQ(ObexName::shortened(QStringLiteral(".profile"), 4), ".pro");
    EXPECT_EQ(ObexName::shortened(QStringLiteral("README"), 3), "REA");
    EXPECT_EQ(ObexName::shortened(QStringLiteral("README"), 0), "");
}

TEST(ObexName, ACutNeverSplitsACharacterOutsideTheBasicPlane) {
    // U+1F600 takes two UTF-16 units.
    const QString smiles = QString::fromUcs4(U"\U0001F600\U0001F600\U0001F600.gif");
    EXPECT_EQ(ObexName::shortened(smiles, 7), QString::fromUcs4(U"\U0001F600.gif"));
    EXPECT_EQ(ObexName::shortened(smiles, 8), QString::fromUcs4(U"\U0001F600\U0001F600.gif"));
    EXPECT_EQ(ObexName::shortened(smiles, 3), QString::fromUcs4(U"\U0001F600"));
    EXPECT_EQ(ObexName::shortened(smiles, 1), "");
}
