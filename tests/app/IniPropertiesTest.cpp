#include "TempDataHome.h"
#include "clsProperties.h"

class IniPropertiesTest : public TempDataHome {
protected:
    clsProperties iniAt(const QString& name) {
        clsProperties ini;
        ini.setIniFileName(dataFile(name));
        return ini;
    }
};

TEST_F(IniPropertiesTest, ReadsLikeAProfileFile) {
    writeFile(dataFile("a.ini"), "; comment\r\n[Prefs]\r\nName = \"quoted value\" \r\n"
                                 "Plain=x=y\r\n\r\n[other]\nk=v\n");
    const clsProperties ini = iniAt("a.ini");
    EXPECT_EQ(ini.GetProp("prefs", "NAME", "d"), "quoted value");
    EXPECT_EQ(ini.GetProp("Prefs", "Plain", "d"), "x=y");
    EXPECT_EQ(ini.GetProp("Prefs", "missing", "d"), "d");
    EXPECT_EQ(ini.GetProp("other", "k", "d"), "v");
    EXPECT_EQ(ini.GetSections(), QStringList({"Prefs", "other"}));
    EXPECT_EQ(ini.GetPropList("Prefs"), QStringList({"Name=quoted value", "Plain=x=y"}));
    EXPECT_EQ(iniAt("missing.ini").GetProp("s", "k", "dflt"), "dflt");
}

TEST_F(IniPropertiesTest, LongValuesAndListsAreCutAtTheBufferSizes) {
    QByteArray text = "[s]\r\nlong=" + QByteArray(300, 'v') + "\r\n";
    // 600 names of 7 characters and a NUL each need 4,800 characters.
    for (int i = 0; i < 600; ++i)
        text += "[sec" + QByteArray::number(i).rightJustified(4, '0') + "]\r\n";
    writeFile(dataFile("big.ini"), text);
    const clsProperties ini = iniAt("big.ini");
    EXPECT_EQ(ini.GetProp("s", "long", "").size(), 255);

    const QStringList sections = ini.GetSections();
    QString packed = sections.join(QChar(0));
    EXPECT_EQ(packed.size(), clsProperties::kListBuffer - 2);
    EXPECT_EQ(sections.first(), "s");
    // "s" and its NUL, then 511 whole names in 4,088 characters: 4 are left for the 512th.
    EXPECT_EQ(sections.size(), 513);
    EXPECT_EQ(sections[511], "sec0510");
    EXPECT_EQ(sections.last(), "sec0");
}

TEST_F(IniPropertiesTest, WritingKeepsTheRestOfTheFile) {
    writeFile(dataFile("w.ini"), "; keep me\n[A]\nx=1\n\n[B]\ny=2\n");
    clsProperties ini = iniAt("w.ini");
    EXPECT_TRUE(ini.SetProp("a", "X", "10"));
    EXPECT_TRUE(ini.SetProp("A", "z", "3"));
    EXPECT_TRUE(ini.SetProp("C", "new", "4"));
    EXPECT_EQ(readFile(dataFile("w.ini")),
              "; keep me\r\n[A]\r\nX=10\r\nz=3\r\n\r\n[B]\r\ny=2\r\n[C]\r\nnew=4\r\n");
    EXPECT_TRUE(ini.SetPropList("B", {"p=1", "q=2"}));
    EXPECT_EQ(ini.GetPropList("B"), QStringList({"p=1", "q=2"}));
}

TEST_F(IniPropertiesTest, OldFilesInTheWindowsCodePageStillRead) {
    writeFile(dataFile("latin.ini"), "[s]\r\nname=Gr\xfc\xdf"
                                     "e\r\n");
    EXPECT_EQ(iniAt("latin.ini").GetProp("s", "name", ""), QString::fromUtf8("Grüße"));
}
