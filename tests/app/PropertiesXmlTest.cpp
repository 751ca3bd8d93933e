#include "TempDataHome.h"
#include "clsPropertiesXML.h"

#include <QFileInfo>

namespace {
const QByteArray kStored =
    "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
    "<APPLICATIONS>\n"
    "    <APPLICATION name=\"other\"/>\n"
    "    <APPLICATION name=\"vellumo\"><SECTIONS>\n"
    "        <SECTION name=\"preferences\">\n"
    "            <KEY name=\"SlideDuration\">3000</KEY>\n"
    "            <KEY name=\"Empty\"></KEY>\n"
    "        </SECTION>\n"
    "        <SECTION name=\"paths\"><KEY name=\"help\">\\help\\</KEY></SECTION>\n"
    "    </SECTIONS></APPLICATION>\n"
    "</APPLICATIONS>\n";
} // namespace

class PropertiesXmlTest : public TempDataHome {
protected:
    QString file() const { return dataFile("settings.xml"); }
};

TEST_F(PropertiesXmlTest, ReadingNeverWritesAndMissingValuesGiveTheDefault) {
    {
        clsPropertiesXML store;
        store.Initialize(file(), "");
        EXPECT_EQ(store.GetProp("preferences", "X", "d"), "d");
        EXPECT_FALSE(store.isDirty());
    }
    EXPECT_FALSE(QFileInfo::exists(file())) << "a read must not create the file";

    writeFile(file(), kStored);
    {
        clsPropertiesXML store;
        store.Initialize(file(), "");
        EXPECT_EQ(store.GetProp("preferences", "SlideDuration", "1"), "3000");
        EXPECT_EQ(store.GetProp("preferences", "Empty", "dflt"), "dflt")
            << "an empty key reads as the default, not as \"\"";
        EXPECT_EQ(store.GetProp("nosection", "SlideDuration", "z"), "z");
        EXPECT_EQ(store.GetProp("preferences", "slideduration", "case"), "case");
        EXPECT_EQ(store.GetProp("pref'erences", "Slide'Duration", "q"), "q");
    }
    EXPECT_EQ(readFile(file()).toUtf8(), kStored);
}

TEST_F(PropertiesXmlTest, StoringTheSameValueLeavesTheStoreCleanAndTheFileUntouched) {
    writeFile(file(), kStored);
    {
        clsPropertiesXML store;
        store.Initialize(file(), "");
        EXPECT_FALSE(store.SetProp("preferences", "SlideDuration", "3000"));
        EXPECT_FALSE(store.isDirty());
        EXPECT_FALSE(store.SetProp("preferences", "", "x")) << "an empty key writes nothing";
    }
    EXPECT_EQ(readFile(file()).toUtf8(), kStored) << "the destructor saved a clean store";
}

TEST_F(PropertiesXmlTest, ChangedValuesAreSavedByTheDestructorAndReadBack) {
    writeFile(file(), kStored);
    const QString awkward = "Grüße & <tags> \"quoted\"";
    {
        clsPropertiesXML store;
        store.Initialize(file(), "");
        EXPECT_TRUE(store.SetProp("preferences", "SlideDuration", "4500"));
        EXPECT_TRUE(store.SetProp("preferences", "Empty", "filled"));
        EXPECT_TRUE(store.SetProp("new section", "Text", awkward));
        EXPECT_TRUE(store.isDirty());
    }
    clsPropertiesXML reread;
    reread.Initialize(file(), "");
    EXPECT_EQ(reread.GetProp("preferences", "SlideDuration", ""), "4500");
    EXPECT_EQ(reread.GetProp("preferences", "Empty", ""), "filled");
    EXPECT_EQ(reread.GetProp("new section", "Text", ""), awkward);
    EXPECT_EQ(reread.GetApplicationNodes(), QStringList({"other", "vellumo"}));
    EXPECT_EQ(reread.GetSectionNodes(), QStringList({"preferences", "paths", "new section"}));
    EXPECT_TRUE(readFile(file()).startsWith("<?xml version=\"1.0\" encoding=\"utf-8\"?>"));
}

TEST_F(PropertiesXmlTest, ABrokenFileStartsAnEmptyStoreOfTheRightShape) {
    writeFile(file(), "this is <not xml");
    {
        clsPropertiesXML store;
        store.Initialize(file(), "");
        EXPECT_TRUE(store.startedEmpty());
        EXPECT_EQ(store.GetProp("preferences", "SlideDuration", "7"), "7");
        store.SetProp("preferences", "SlideDuration", "8");
    }
    const QString text = readFile(file());
    EXPECT_TRUE(text.startsWith("<?xml version=\"1.0\" encoding=\"utf-8\"?>"));
    EXPECT_TRUE(text.contains("<APPLICATION name=\"vellumo\">"));
    EXPECT_TRUE(text.contains("<KEY name=\"SlideDuration\">8</KEY>"));
}

TEST_F(PropertiesXmlTest, ApplicationNamesAreLowerCased) {
    writeFile(file(), kStored);
    clsPropertiesXML store;
    store.Initialize(file(), "VelLuMo");
    EXPECT_EQ(store.ApplicationName(), "vellumo");
    EXPECT_EQ(store.GetProp("preferences", "SlideDuration", ""), "3000");
    store.setApplicationName("OTHER");
    EXPECT_EQ(store.GetProp("preferences", "SlideDuration", "none"), "none");
    store.setApplicationName("");
    EXPECT_EQ(store.ApplicationName(), "other");
}

TEST_F(PropertiesXmlTest, ListsSkipElementsWithoutExactlyOneSeparator) {
    clsPropertiesXML store;
    store.Initialize(file(), "");
    EXPECT_TRUE(store.SetPropList("list", {"a=1", "b", "c=2=3", "d=4"}, "="));
    QStringList lines;
    EXPECT_TRUE(store.GetPropList("list", lines, "="));
    EXPECT_EQ(lines, QStringList({"a=1", "d=4"}));
    EXPECT_FALSE(store.GetPropList("missing", lines, "="));
    EXPECT_TRUE(lines.isEmpty());
    EXPECT_EQ(store.GetKeyNodes("list"), QStringList({"a", "d"}));
}

TEST_F(PropertiesXmlTest, RenamingAnUninitializedStoreKeepsTheDocumentForTheNewFile) {
    writeFile(file(), kStored);
    const QString copy = dataFile("copy/settings.xml");
    QDir().mkpath(dataFile("copy"));
    clsPropertiesXML store;
    store.Initialize(file(), "");
    store.setXmlFileName(copy);
    EXPECT_EQ(store.XmlFileName(), file()) << "renaming an initialized store is ignored";
    store.Reset();
    store.setXmlFileName(copy);
    EXPECT_TRUE(store.isInitialized());
    EXPECT_TRUE(store.SaveXmlFile());
    clsPropertiesXML reread;
    reread.Initialize(copy, "");
    EXPECT_EQ(reread.GetProp("paths", "help", ""), "\\help\\");
}

TEST_F(PropertiesXmlTest, DeletingRemovesKeysSectionsAndTheApplication) {
    writeFile(file(), kStored);
    clsPropertiesXML store;
    store.Initialize(file(), "");
    store.DeleteProp("preferences", "SlideDuration");
    EXPECT_EQ(store.GetProp("preferences", "SlideDuration", "gone"), "gone");
    EXPECT_EQ(store.GetKeyNodes("preferences"), QStringList({"Empty"}));
    store.DeletePropSection("paths");
    EXPECT_EQ(store.GetSectionNodes(), QStringList({"preferences"}));
    store.DeleteApplication();
    EXPECT_EQ(store.GetApplicationNodes(), QStringList({"other"}));
    EXPECT_EQ(store.GetProp("preferences", "Empty", "none"), "none");
}
