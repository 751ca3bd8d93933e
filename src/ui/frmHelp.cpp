#include "frmHelp.h"

#include "AppGlobals.h"
#include "HelpBrowser.h"
#include "HelpSearch.h"

#include <QApplication>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QShortcut>
#include <QToolButton>
#include <QVBoxLayout>

namespace {
QPointer<frmHelp>& openWindow() {
    static QPointer<frmHelp> window;
    return window;
}

QString text(const char* key, const char* fallback) {
    return AppGlobals::text(key, fallback);
}

const QKeySequence kBackKeys(Qt::ALT | Qt::Key_Left);
const QKeySequence kForwardKeys(Qt::ALT | Qt::Key_Right);
const QKeySequence kContentsKeys(Qt::ALT | Qt::Key_Home);
} // namespace

frmHelp::frmHelp()
    : QWidget(nullptr, Qt::Window), m_browser(new HelpBrowser(this)),
      cmdBack(navigationButton("cmdBack", "go-previous", kBackKeys)),
      cmdForward(navigationButton("cmdForward", "go-next", kForwardKeys)),
      cmdContents(navigationButton("cmdContents", "go-home", kContentsKeys)),
      txtSearch(new QLineEdit(this)), cmdSearch(new QPushButton(this)) {
    setObjectName("frmHelp");
    setAttribute(Qt::WA_DeleteOnClose);
    // Reading the help never keeps the program running after its window closed.
    setAttribute(Qt::WA_QuitOnClose, false);
    txtSearch->setObjectName(QStringLiteral("txtSearch"));
    txtSearch->setClearButtonEnabled(true);
    cmdSearch->setObjectName(QStringLiteral("cmdSearch"));
    cmdSearch->setIcon(QIcon::fromTheme(QStringLiteral("edit-find")));
    cmdBack->setEnabled(false);
    cmdForward->setEnabled(false);
    m_browser->setResultsWriter([this](const QString& query) { return resultsPage(query); });
    buildLayout();
    connectControls();
    TranslateForm();
    resize(800, 640);
}

frmHelp::~frmHelp() = default;

QToolButton* frmHelp::navigationButton(const char* name, const char* icon,
                                       const QKeySequence& keys) {
    auto* button = new QToolButton(this);
    button->setObjectName(QLatin1String(name));
    button->setIcon(QIcon::fromTheme(QLatin1String(icon)));
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    button->setAutoRaise(true);
    auto* shortcut = new QShortcut(keys, this);
    connect(shortcut, &QShortcut::activated, button, &QToolButton::click);
    return button;
}

void frmHelp::buildLayout() {
    auto* bar = new QHBoxLayout;
    for (QToolButton* button : {cmdBack, cmdForward, cmdContents})
        bar->addWidget(button);
    bar->addStretch(1);
    bar->addWidget(txtSearch, 2);
    bar->addWidget(cmdSearch);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(4, 4, 4, 4);
    layout->addLayout(bar);
    layout->addWidget(m_browser, 1);
}

void frmHelp::connectControls() {
    connect(cmdBack, &QToolButton::clicked, m_browser, &HelpBrowser::backward);
    connect(cmdForward, &QToolButton::clicked, m_browser, &HelpBrowser::forward);
    connect(cmdContents, &QToolButton::clicked, this, &frmHelp::showContents);
    connect(m_browser, &HelpBrowser::backwardAvailable, cmdBack, &QToolButton::setEnabled);
    connect(m_browser, &HelpBrowser::forwardAvailable, cmdForward, &QToolButton::setEnabled);
    // Told before the history has the new page, so it is taken from here.
    connect(m_browser, &HelpBrowser::sourceChanged, this, [this](const QUrl& shown) {
        setWindowTitle(m_browser->documentTitle());
        // Back to a search shows its words again, another page none.
        txtSearch->setText(HelpBrowser::searchOf(shown));
    });
    connect(txtSearch, &QLineEdit::returnPressed, this, [this] { search(txtSearch->text()); });
    connect(cmdSearch, &QPushButton::clicked, this, [this] { search(txtSearch->text()); });
    // The box takes Escape for itself before any shortcut hears it.
    txtSearch->installEventFilter(this);
    auto* find = new QShortcut(QKeySequence::Find, this);
    connect(find, &QShortcut::activated, this, [this] {
        txtSearch->setFocus(Qt::ShortcutFocusReason);
        txtSearch->selectAll();
    });
}

// A button is named for screen readers by its caption, and its tool tip
// tells its key.
void frmHelp::describe(QToolButton* button, const QString& caption, const QKeySequence& keys) {
    button->setText(caption);
    button->setAccessibleName(caption);
    button->setToolTip(caption + " (" + keys.toString(QKeySequence::NativeText) + u')');
}

void frmHelp::TranslateForm() {
    describe(cmdBack, text("STR_HELP_BACK", "Back"), kBackKeys);
    describe(cmdForward, text("STR_HELP_FORWARD", "Forward"), kForwardKeys);
    describe(cmdContents, text("STR_HELP_CONTENTS", "Contents"), kContentsKeys);
    txtSearch->setPlaceholderText(text("STR_HELP_SEARCH_FIELD", "Search the help"));
    txtSearch->setAccessibleName(txtSearch->placeholderText());
    txtSearch->setToolTip(
        text("STR_HELP_SEARCH_TIP", "Enter searches every page, Escape clears (Ctrl+F)"));
    cmdSearch->setText(text("STR_HELP_SEARCH", "Search"));
    cmdSearch->setAccessibleName(cmdSearch->text());
    m_browser->setAccessibleName(text("STR_HELP_PAGE", "Help page"));
    // The same page, in the language now chosen.
    const QString file = AppGlobals::helpFile();
    if (file.isEmpty() || m_browser->source().isEmpty() || !usePages(file))
        return;
    const QString query = HelpBrowser::searchOf(m_browser->source());
    if (!query.isEmpty())
        return m_browser->showSearch(query);
    m_browser->setSource(m_browser->pages().url(shownTopic()));
}

// Whether the pages are others than those shown so far.
bool frmHelp::usePages(const QString& file) {
    const HelpPages pages(file);
    if (pages.contents() == m_browser->pages().contents())
        return false;
    m_search.reset();
    m_browser->setPages(pages);
    return true;
}

void frmHelp::showTopic(const QString& file, const QString& topic) {
    usePages(file);
    m_browser->setSource(m_browser->pages().url(topic));
}

QString frmHelp::shownTopic() const {
    return m_browser->pages().topicOf(m_browser->source());
}

QUrl frmHelp::shownAddress() const {
    return m_browser->source();
}

void frmHelp::showContents() {
    m_browser->setSource(m_browser->pages().url(QString()));
}

void frmHelp::search(const QString& words) {
    if (words.simplified().isEmpty())
        return;
    m_browser->showSearch(words.simplified());
}

bool frmHelp::eventFilter(QObject* watched, QEvent* event) {
    if (watched == txtSearch && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) {
        clearSearch();
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

// Escape takes the words away, and the lists they found with them: back to
// the page read before searching.
void frmHelp::clearSearch() {
    while (m_browser->showsSearch() && m_browser->isBackwardAvailable())
        m_browser->backward();
    txtSearch->clear();
}

QString frmHelp::resultsPage(const QString& query) {
    if (!m_search)
        m_search = std::make_unique<HelpSearch>(m_browser->pages().all());
    const QList<HelpSearch::Match> matches = m_search->find(query);
    HelpSearch::Texts texts;
    texts.heading = AppGlobals::text("STR_HELP_RESULTS", "Search for “%0”", {query});
    texts.summary =
        matches.isEmpty()
            ? AppGlobals::text("STR_HELP_NOTHING_FOUND",
                               "No page has all of these words. Try fewer or other words.")
            : AppGlobals::text("STR_HELP_PAGES_FOUND", "Pages found: %0",
                               {QString::number(matches.size())});
    texts.styleSheet = QUrl::fromLocalFile(QFileInfo(m_browser->pages().contents()).path() +
                                           QStringLiteral("/help.css"));
    texts.hits = [](int hits) {
        return AppGlobals::text("STR_HELP_HITS", "hits: %0", {QString::number(hits)});
    };
    return HelpSearch::resultsPage(matches, texts);
}

frmHelp* frmHelp::current() {
    return openWindow();
}

frmHelp* frmHelp::showFile(const QString& file, const QString& topic) {
    QPointer<frmHelp>& window = openWindow();
    if (!window) {
        window = new frmHelp;
        // Over the window the user asked from, as a child window would be.
        if (const QWidget* asking = QApplication::activeWindow())
            window->move(asking->geometry().center() - window->rect().center());
    }
    window->showTopic(file, topic);
    window->show();
    window->raise();
    window->activateWindow();
    return window;
}
