#include "AppError.h"
#include "FakeClock.h"
#include "IniMigration.h"
#include "LocaleInfo.h"
#include "SettingsBootstrap.h"
#include "TempDataHome.h"
#include "clsPropertiesXML.h"

#include <QDir>
#include <QFileInfo>

class BootstrapTest : public TempDataHome {
protected:
    QString userFile() const { return dataFile("Vellumo/vellumo.xml"); }
    QString archive() const { return dataFile("Vellumo/archive/"); }
    std::unique_ptr<clsPropertiesXML> open() { return SettingsBootstrap::openAndPrepare(); }
};

TEST_F(BootstrapTest, FirstStartSeedsTheUserFileAndTheArchive) {
    {
        auto settings = open();
        EXPECT_EQ(settings->XmlFileName(), userFile());
    }
    clsPropertiesXML user;
    user.Initialize(userFile(), "");
    EXPECT_EQ(user.GetProp("preferences", "Initialized", ""), "1");
    EXPECT_EQ(user.GetProp("preferences", "Language", ""), "en-us");
    EXPECT_EQ(user.GetProp("preferences", "SlideDuration", ""), "3000")
        << "seeded from the program";
    EXPECT_EQ(user.GetProp("browserPaths", "Backgrounds", ""), archive() + "Backgrounds");
    EXPECT_EQ(user.GetProp("preferences", "SavedPictureBrowserPath", ""),
              archive() + "Backgrounds");
    EXPECT_EQ(user.GetProp("browserPaths", "Pictures", ""), archive() + "Pictures");
    EXPECT_EQ(user.GetProp("browserPaths", "Sounds", ""), archive() + "Sounds");
    EXPECT_EQ(user.GetProp("browserPaths", "Animations", ""), archive() + "Animations");
    for (const char* folder : {"Backgrounds", "Pictures", "Sounds", "Animations"})
        EXPECT_FALSE(QDir(archive() + folder).isEmpty()) << folder;
    EXPECT_FALSE(QFileInfo::exists(programFile("vellumo.xml.broken")));
}

TEST_F(BootstrapTest, InitializedZeroRewritesThePathsButCopiesNothingOverTheArchive) {
    open().reset();
    const QString sound = archive() + "Sounds/chime.wav";
    ASSERT_TRUE(QFile::remove(sound));
    writeFile(archive() + "Pictures/mine.gif", "user's own");
    {
        clsPropertiesXML user;
        user.Initialize(userFile(), "");
        user.SetProp("preferences", "Initialized", "0");
        user.SetProp("browserPaths", "Sounds", "/elsewhere");
    }
    open().reset();
    clsPropertiesXML user;
    user.Initialize(userFile(), "");
    EXPECT_EQ(user.GetProp("preferences", "Initialized", ""), "1");
    EXPECT_EQ(user.GetProp("browserPaths", "Sounds", ""), archive() + "Sounds");
    EXPECT_FALSE(QFileInfo::exists(sound)) << "an existing archive is not copied into again";
    EXPECT_EQ(readFile(archive() + "Pictures/mine.gif"), "user's own");
}

TEST_F(BootstrapTest, FirstRunPicksTheSystemLanguageOrItsShortFormOrEnglish) {
    LocaleInfo::setSystemLocale(QLocale(QLocale::German, QLocale::Germany));
    EXPECT_EQ(open()->GetProp("preferences", "Language", ""), "de-de");
    QFile::remove(userFile());

    LocaleInfo::setSystemLocale(QLocale(QLocale::Swedish, QLocale::Sweden));
    EXPECT_EQ(open()->GetProp("preferences", "Language", ""), "en-us");
    QFile::remove(userFile());

    // With a plain Swedish file installed, sv-se falls back to sv.
    {
        clsPropertiesXML program;
        program.Initialize(programFile("vellumo.xml"), "");
        program.SetProp("languages", "sv", "Svenska,1");
    }
    QFile::copy(programFile("language/en-us.xml"), programFile("language/sv.xml"));
    EXPECT_EQ(open()->GetProp("preferences", "Language", ""), "sv");
}

TEST_F(BootstrapTest, ABrokenUserFileIsKeptAsideAndTheShippedSettingsUsed) {
    writeFile(userFile(), "garbage, not xml");
    auto settings = open();
    EXPECT_EQ(settings->GetProp("paths", "workPath", ""), "Vellumo\\work\\");
    EXPECT_EQ(readFile(userFile() + ".broken"), "garbage, not xml");
}

TEST_F(BootstrapTest, AnUncreatableSettingsFolderIsReportedWithItsStep) {
    // Even root cannot make a folder below a file.
    writeFile(dataFile("Vellumo"), "a file where the folder should be");
    try {
        open();
        FAIL() << "opening must fail";
    } catch (const AppError& error) {
        EXPECT_EQ(error.source(), "ModMain.Main - Program Properties");
        EXPECT_TRUE(error.description().contains(dataFile("Vellumo")));
    }
}

class IniMigrationTest : public BootstrapTest {
protected:
    void writeIni(const QByteArray& body) { writeFile(programFile("vellumo.ini"), body); }
};

TEST_F(IniMigrationTest, AnOldIniIsMovedIntoTheNewUserFileOnce) {
    FakeClock clock(1000, QDateTime(QDate(2026, 3, 4), QTime(5, 6, 7)));
    ScopedClock installed(clock);
    // An installation that had been set up: its first run is over, so its language stays.
    writeIni("[this]\r\nDelete=1\r\nLog=1\r\n[preferences]\r\nLanguageID=H0407\r\n"
             "Initialized=1\r\nSlideDuration=4000\r\n[RecentFiles]\r\n1=/home/a.mms\r\n");
    open().reset();
    EXPECT_FALSE(QFileInfo::exists(programFile("vellumo.ini"))) << "Delete=1 removes it";
    clsPropertiesXML user;
    user.Initialize(userFile(), "");
    EXPECT_EQ(user.GetProp("preferences", "Language", ""), "de-de");
    EXPECT_EQ(user.GetProp("preferences", "LanguageID", "none"), "none");
    EXPECT_EQ(user.GetProp("preferences", "SlideDuration", ""), "4000");
    EXPECT_EQ(user.GetProp("RecentFiles", "1", ""), "/home/a.mms");
    EXPECT_EQ(user.GetProp("AutoUpdate", "U_260304_050607", ""), "OK");
    EXPECT_EQ(user.GetProp("this", "Delete", "none"), "none");
}

TEST_F(IniMigrationTest, LanguageIdsBecomeInstalledCodesOrEnglish) {
    clsPropertiesXML settings;
    settings.Initialize(programFile("vellumo.xml"), "");
    EXPECT_EQ(IniMigration::languageCodeFor(settings, "H0407"), "de-de");
    EXPECT_EQ(IniMigration::languageCodeFor(settings, "1031"), "de-de");
    EXPECT_EQ(IniMigration::languageCodeFor(settings, "H0409"), "en-us");
    EXPECT_EQ(IniMigration::languageCodeFor(settings, "H0413"), "en-us") << "Dutch is not shipped";
    EXPECT_EQ(IniMigration::languageCodeFor(settings, "rubbish"), "en-us");
    // A language known only by its primary id is found through it.
    settings.SetProp("languages", "de", "Deutsch,1");
    settings.SetProp("langid", "0807", "");
    QFile::copy(programFile("language/de-de.xml"), programFile("language/de.xml"));
    EXPECT_EQ(IniMigration::languageCodeFor(settings, "H0807"), "de");
}

TEST_F(IniMigrationTest, WithoutDeleteTheIniStaysAndNothingIsLogged) {
    writeIni("[preferences]\r\nSlideDuration=5000\r\n");
    open().reset();
    EXPECT_TRUE(QFileInfo::exists(programFile("vellumo.ini")));
    clsPropertiesXML user;
    user.Initialize(userFile(), "");
    EXPECT_EQ(user.GetProp("preferences", "SlideDuration", ""), "5000");
    EXPECT_TRUE(user.GetKeyNodes("AutoUpdate").isEmpty());
    // The user file exists now, so a second start keeps the user's own values.
    user.SetProp("preferences", "SlideDuration", "6000");
    user.SaveXmlFile();
    EXPECT_EQ(open()->GetProp("preferences", "SlideDuration", ""), "6000");
}
