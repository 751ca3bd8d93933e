#include "AppGlobals.h"
#include "DialogService.h"
#include "HelpBrowser.h"
#include "HelpTopic.h"
#include "MainWindowFixture.h"
#include "clsXMLocalizer.h"
#include "ctlMainMenu.h"
#include "ctlPictureEditor.h"
#include "ctlSlideThumbs.h"
#include "frmHelp.h"
#include "frmSettings.h"

#include <QApplication>
#include <QDir>
#include <QDirIterator>
#include <QLineEdit>
#include <QRegularExpression>
#include <QTabWidget>
#include <QTest>
#include <QTextBlock>
#include <QToolButton>

// The help as the user meets it: F1 in whichever window is in front, links,
// Back and Forward, the search, and pages that are missing; and the shipped
// pages themselves, read as files.
class HelpTest : public MainWindowFixture {
protected:
    void SetUp() override {
        MainWindowFixture::SetUp();
        speak("en-us");
    }
    void TearDown() override {
        delete frmHelp::current();
        MainWindowFixture::TearDown();
    }
    // The language as the settings and the running program both have it.
    void speak(const QString& language) {
        setting("Language", language);
        auto localizer = std::make_unique<clsXMLocalizer>(*AppGlobals::settings());
        ASSERT_TRUE(localizer->SetLanguage(language));
        AppGlobals::installLocalizer(std::move(localizer));
        AppGlobals::setHelpFile(programFile("help/" + language + ".html"));
    }
    // F1 on the control with the focus, in the window that is active.
    static frmHelp* pressF1(QWidget* window, QWidget* focus) {
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitFor([window] { return QApplication::activeWindow() == window; }));
        focus->setFocus(Qt::OtherFocusReason);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_F1);
        return frmHelp::current();
    }
    // The help window, in front as it comes, so its keys reach it.
    static frmHelp* shown(frmHelp* help) {
        EXPECT_TRUE(QTest::qWaitForWindowActive(help));
        return help;
    }
    QString shownFile() const {
        return frmHelp::current() ? frmHelp::current()->shownAddress().toLocalFile() : QString();
    }
    // The bold words of the page shown, other than its heading.
    static QStringList boldShown(const frmHelp* help) {
        QStringList bold;
        for (QTextBlock block = help->browser()->document()->begin().next(); block.isValid();
             block = block.next())
            for (auto fragment = block.begin(); !fragment.atEnd(); ++fragment)
                if (fragment.fragment().charFormat().fontWeight() >= QFont::Bold)
                    bold << fragment.fragment().text();
        return bold;
    }
    static QStringList linksShown(const frmHelp* help) {
        QStringList links;
        for (QTextBlock block = help->browser()->document()->begin(); block.isValid();
             block = block.next())
            for (auto fragment = block.begin(); !fragment.atEnd(); ++fragment)
                if (const QString href = fragment.fragment().charFormat().anchorHref();
                    !href.isEmpty() && !links.contains(href))
                    links << href;
        return links;
    }
};

TEST_F(HelpTest, F1OpensThePageOfThePartOrDialogInFront) {
    window().slideStrip()->setFocus();
    frmHelp* help = pressF1(&window(), window().slideStrip());
    ASSERT_NE(help, nullptr);
    EXPECT_EQ(help->shownTopic(), "slides.html");
    EXPECT_EQ(shownFile(), programFile("help/en-us/slides.html"));
    EXPECT_EQ(help->windowTitle(), "Slides – Vellumo Help");
    EXPECT_EQ(help->parentWidget(), nullptr) << "a window of its own, beside any dialog";

    EXPECT_EQ(pressF1(&window(), window().pictureEditor()), help) << "the same window again";
    EXPECT_EQ(help->shownTopic(), "picture-editor.html");

    window().mainMenu()->MenuClick(ctlMainMenu::Settings);
    frmSettings* settings = window().settingsDialog();
    ASSERT_NE(settings, nullptr);
    auto* tabs = settings->findChild<QTabWidget*>("tabSettings");
    tabs->setCurrentIndex(tabs->count() - 1);
    pressF1(settings, tabs->tabBar());
    EXPECT_EQ(help->shownTopic(), "settings.html#phone") << "the settings win over the window";
    EXPECT_EQ(help->shownAddress().fragment(), "phone");
    EXPECT_TRUE(help->isVisible());
    settings->reject();

    window().mainMenu()->MenuClick(ctlMainMenu::About);
    auto* about = window().findChild<QDialog*>("frmAbout");
    ASSERT_TRUE(about && about->isModal());
    pressF1(about, about);
    EXPECT_EQ(help->shownTopic(), "about.html");
    EXPECT_TRUE(help->browser()->toPlainText().contains("libraries it is built on"));
}

TEST_F(HelpTest, LinksLeadOnAndBackForwardAndContentsReturn) {
    frmHelp* help = shown(frmHelp::showFile(AppGlobals::helpFile()));
    auto* back = help->findChild<QToolButton*>("cmdBack");
    auto* forward = help->findChild<QToolButton*>("cmdForward");
    EXPECT_EQ(shownFile(), programFile("help/en-us.html"));
    EXPECT_FALSE(back->isEnabled());
    ASSERT_EQ(linksShown(help).value(0), "en-us/main-window.html");

    // The first link, reached and followed by the keyboard.
    help->browser()->setFocus();
    QTest::keyClick(help->browser(), Qt::Key_Tab);
    QTest::keyClick(help->browser(), Qt::Key_Return);
    EXPECT_EQ(shownFile(), programFile("help/en-us/main-window.html"));
    EXPECT_TRUE(back->isEnabled());
    EXPECT_FALSE(forward->isEnabled());

    QTest::keyClick(help, Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(shownFile(), programFile("help/en-us.html"));
    EXPECT_TRUE(forward->isEnabled());
    QTest::keyClick(help, Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(shownFile(), programFile("help/en-us/main-window.html"));
    QTest::mouseClick(back, Qt::LeftButton);
    EXPECT_EQ(shownFile(), programFile("help/en-us.html"));

    help->showTopic(AppGlobals::helpFile(), "export.html");
    QTest::keyClick(help, Qt::Key_Home, Qt::AltModifier);
    EXPECT_EQ(help->shownTopic(), "");
    EXPECT_EQ(shownFile(), programFile("help/en-us.html"));
    QTest::keyClick(help, Qt::Key_Left, Qt::AltModifier);
    EXPECT_EQ(help->shownTopic(), "export.html");
}

// A word that only one page has, so the list must name that page alone.
TEST_F(HelpTest, TheSearchListsThePagesWithEveryWordAndEscapeClearsIt) {
    QStringList pagesWithWord;
    for (QDirIterator it(programFile("help/en-us"), {"*.html"}, QDir::Files); it.hasNext();)
        if (readFile(it.next()).contains("Targa"))
            pagesWithWord << it.fileInfo().fileName();
    ASSERT_EQ(pagesWithWord, QStringList{"picture-browser.html"});

    frmHelp* help = shown(frmHelp::showFile(AppGlobals::helpFile(), "slides.html"));
    auto* box = help->findChild<QLineEdit*>("txtSearch");
    box->setFocus();
    QTest::keyClicks(box, "targa");
    QTest::keyClick(box, Qt::Key_Return);
    EXPECT_TRUE(help->browser()->showsSearch());
    const QStringList links = linksShown(help);
    ASSERT_EQ(links.size(), 1) << links.join(' ').toStdString();
    EXPECT_EQ(QUrl(links[0]).toLocalFile(), programFile("help/en-us/picture-browser.html"));
    EXPECT_EQ(boldShown(help), QStringList{"Targa"})
        << "the hit is shown in bold, in the case the page writes it";
    EXPECT_TRUE(
        help->browser()->toPlainText().contains("Picture browser – Vellumo Help (hits: 1)"));

    QTest::keyClicks(box, " nosuchword");
    QTest::keyClick(box, Qt::Key_Return);
    EXPECT_TRUE(linksShown(help).isEmpty()) << "every word must be on the page";
    EXPECT_TRUE(help->browser()->toPlainText().contains("No page has all of these words"));

    QTest::keyClick(box, Qt::Key_Escape);
    EXPECT_EQ(box->text(), "");
    EXPECT_EQ(help->shownTopic(), "slides.html") << "back past both searches";

    help->search("background");
    const QStringList many = linksShown(help);
    EXPECT_GT(many.size(), 3);
    help->browser()->setSource(QUrl(many.last()));
    QTest::keyClick(help, Qt::Key_Left, Qt::AltModifier);
    EXPECT_TRUE(help->browser()->showsSearch()) << "Back returns to the list";
    EXPECT_EQ(box->text(), "background");
}

TEST_F(HelpTest, AMissingPageShowsTheContentsOfTheLanguageElseEnglish) {
    speak("de-de");
    frmHelp* help = frmHelp::showFile(AppGlobals::helpFile(), "no-such-page.html#part");
    EXPECT_EQ(shownFile(), programFile("help/de-de.html"));
    help->showTopic(AppGlobals::helpFile(), "../en-us/slides.html");
    EXPECT_EQ(shownFile(), programFile("help/de-de.html")) << "a topic stays in its language";

    // A link to a page that is gone leads to the contents too.
    help->showTopic(AppGlobals::helpFile(), "slides.html");
    ASSERT_EQ(shownFile(), programFile("help/de-de/slides.html"));
    QFile::remove(programFile("help/de-de/preview.html"));
    help->browser()->setSource(QUrl("preview.html"));
    EXPECT_EQ(shownFile(), programFile("help/de-de.html"));

    // A language with contents but no pages; then one without any help.
    ASSERT_TRUE(QDir(programFile("help/de-de")).removeRecursively());
    window().slideStrip()->setFocus();
    pressF1(&window(), window().slideStrip());
    EXPECT_EQ(shownFile(), programFile("help/de-de.html"));
    ASSERT_TRUE(QFile::remove(programFile("help/de-de.html")));
    pressF1(&window(), window().slideStrip());
    EXPECT_EQ(shownFile(), programFile("help/en-us/slides.html"));
    help->findChild<QToolButton*>("cmdContents")->click();
    EXPECT_EQ(shownFile(), programFile("help/en-us.html"));

    // Without any help, F1 says so instead of opening an empty window.
    delete help;
    ASSERT_TRUE(QFile::remove(programFile("help/en-us.html")));
    DialogService::queueAnswer(QMessageBox::Ok);
    pressF1(&window(), window().slideStrip());
    EXPECT_EQ(frmHelp::current(), nullptr);
    ASSERT_EQ(DialogService::answeredBoxes().size(), 1);
    EXPECT_EQ(DialogService::answeredBoxes()[0].text.toStdString(),
              "Die Hilfedatei " + programFile("help/de-de.html").toStdString() +
                  " wurde nicht gefunden.");
}

// A new language takes the help with it: the page shown is shown in it.
TEST_F(HelpTest, TheHelpSpeaksTheLanguageChosenInTheSettings) {
    frmHelp* help = frmHelp::showFile(AppGlobals::helpFile(), "settings.html#phone");
    setting("Language", "de-de");
    window().applySettings();
    EXPECT_EQ(shownFile(), programFile("help/de-de/settings.html"));
    EXPECT_EQ(help->shownAddress().fragment(), "phone");
    EXPECT_EQ(help->findChild<QToolButton*>("cmdBack")->accessibleName(), "Zurück");
    help->search("Hintergrund");
    EXPECT_TRUE(help->browser()->toPlainText().startsWith("Suche nach „Hintergrund“"));
    EXPECT_TRUE(linksShown(help).value(0).contains("/de-de/"));
}

TEST_F(HelpTest, EveryControlOfTheHelpWindowHasANameAndItsKey) {
    frmHelp* help = shown(frmHelp::showFile(AppGlobals::helpFile()));
    int named = 0;
    for (const QWidget* control : help->findChildren<QWidget*>()) {
        if (control->focusPolicy() == Qt::NoFocus || !control->isVisible())
            continue;
        EXPECT_FALSE(control->accessibleName().isEmpty()) << control->objectName().toStdString();
        ++named;
    }
    EXPECT_EQ(named, 6) << "three buttons, the search box and its button, the page";
    EXPECT_EQ(help->findChild<QToolButton*>("cmdForward")->toolTip(), "Forward (Alt+Right)");
}

// The shipped pages, as files: each language has the same pages, every link
// between them and every picture they show exists, and every window's topic
// is a page with the part it names.
class HelpFilesTest : public ::testing::Test {
protected:
    static QString helpFolder() { return QStringLiteral(VELLUMO_SOURCE_DIR "/data/help/"); }
    static QString read(const QString& path) {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
    }
    static QStringList attributes(const QString& html, const char* name) {
        QStringList values;
        const QRegularExpression attribute(QStringLiteral("\\b%1=\"([^\"]*)\"").arg(name));
        for (const QRegularExpressionMatch& match : attribute.globalMatch(html))
            values << match.captured(1);
        return values;
    }
    static QStringList pages(const QString& language) {
        return QDir(helpFolder() + language).entryList({"*.html"}, QDir::Files, QDir::Name);
    }
    // "" when the link leads to a file and part that exist.
    static QString broken(const QString& from, const QString& link) {
        if (link.startsWith("http://") || link.startsWith("https://"))
            return QString();
        const QString file = link.section(u'#', 0, 0);
        const QString part = link.section(u'#', 1);
        const QString target = file.isEmpty() ? from : QFileInfo(from).dir().filePath(file);
        if (!QFileInfo(target).isFile())
            return link + ": no such file";
        if (!part.isEmpty() && !read(target).contains("id=\"" + part + "\""))
            return link + ": no such part";
        return QString();
    }
};

TEST_F(HelpFilesTest, BothLanguagesHaveEveryLinkedPageAndEveryPicture) {
    const QStringList english = pages("en-us");
    ASSERT_GE(english.size(), 17);
    EXPECT_EQ(pages("de-de"), english);
    for (const QString language : {"en-us", "de-de"}) {
        QStringList files{helpFolder() + language + ".html"};
        for (const QString& page : pages(language))
            files << helpFolder() + language + "/" + page;
        QStringList fromContents;
        for (const QString& file : files) {
            const QString html = read(file);
            EXPECT_TRUE(html.contains("<title>")) << file.toStdString();
            QStringList links = attributes(html, "href");
            if (file == files.first())
                fromContents = links;
            for (const QString& link : links + attributes(html, "src"))
                EXPECT_EQ(broken(file, link).toStdString(), "") << file.toStdString();
        }
        for (const QString& page : english)
            EXPECT_TRUE(fromContents.contains(QString(language) + "/" + page))
                << language.toStdString() << " contents lacks " << page.toStdString();
        for (const QString& topic : HelpTopic::all())
            EXPECT_EQ(broken(files.first(), topic.startsWith('#') ? topic : language + "/" + topic),
                      "")
                << language.toStdString();
    }
}
