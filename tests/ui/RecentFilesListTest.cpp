#include "RecentFilesList.h"
#include "AppGlobals.h"
#include "SettingsBootstrap.h"
#include "TempDataHome.h"
#include "clsPropertiesXML.h"

namespace {
class RecentFilesListTest : public TempDataHome {};
} // namespace

TEST_F(RecentFilesListTest, AFullListLosesItsOldestAndAKnownPathKeepsItsPlace) {
    RecentFilesList recent;
    recent.SetRecentFilesListSize(3);
    for (const char* path : {"/a.mms", "/b.mms", "/a.mms", "/c.mms"})
        recent.AddToRecentFilesList(path);
    EXPECT_EQ(recent.GetRecentFilesList(), QStringList({"/a.mms", "/b.mms", "/c.mms"}))
        << "adding a present path does not reorder it";
    recent.AddToRecentFilesList("/b.mms");
    EXPECT_EQ(recent.GetRecentFilesList(), QStringList({"/b.mms", "/c.mms"}))
        << "a full list drops its oldest even for a path it holds";
    recent.AddToRecentFilesList("/d.mms");
    recent.RemoveFromRecentFilesList("/c.mms");
    recent.RemoveFromRecentFilesList("/never.mms");
    EXPECT_EQ(recent.GetRecentFilesList(), QStringList({"/b.mms", "/d.mms"}));
}

TEST_F(RecentFilesListTest, NumbersCarryTheRecentCommandAndThePosition) {
    RecentFilesList recent;
    EXPECT_EQ(recent.descriptor("Recent"), "!Recent;0") << "disabled while empty";
    recent.SetRecentFilesList({"/x/one.mms", "/x/a,b|c;d!e#f.mms"});
    EXPECT_EQ(recent.descriptor("Recent"),
              QString::fromUtf8(
                  "Recent;0|/x/one.mms;265|/x/a\u201ab\u2223c\u037ed\u01c3e\uff03f.mms;521"));
    EXPECT_FALSE(recent.choose(9)) << "no position";
    EXPECT_FALSE(recent.choose(3 * 256 + 9)) << "past the list";
    EXPECT_FALSE(recent.choose(2 * 256 + 3));
    ASSERT_TRUE(recent.choose(2 * 256 + 9));
    EXPECT_EQ(recent.GetRecentSelectedFile(), "/x/a,b|c;d!e#f.mms");
}

TEST_F(RecentFilesListTest, TheListIsKeptInTheSettings) {
    AppGlobals::installSettings(SettingsBootstrap::openAndPrepare());
    clsPropertiesXML& settings = *AppGlobals::settings();
    RecentFilesList written;
    written.SetRecentFilesList({"/m/first.mms", "/m/with=sign.mms"});
    written.save(settings);
    ASSERT_TRUE(settings.SaveXmlFile());
    RecentFilesList read;
    read.load(settings);
    EXPECT_EQ(read.GetRecentFilesList(), written.GetRecentFilesList());
    written.SetRecentFilesList({"/m/only.mms"});
    written.save(settings);
    read.load(settings);
    EXPECT_EQ(read.GetRecentFilesList(), QStringList{"/m/only.mms"}) << "old entries go";
}
