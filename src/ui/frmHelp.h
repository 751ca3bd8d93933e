#pragma once

#include <QKeySequence>
#include <QUrl>
#include <QWidget>
#include <memory>

class HelpBrowser;
class HelpSearch;
class QLineEdit;
class QPushButton;
class QToolButton;

// The program's own help window: the help pages of the language with
// Back, Forward and Contents, and a search through all of them. It is a
// window of its own, so it can be read beside a dialog that waits for an
// answer.
class frmHelp : public QWidget {
    Q_OBJECT
public:
    frmHelp();
    ~frmHelp() override;

    // Shows a topic (as HelpTopic gives them) of the help whose contents
    // page is file.
    void showTopic(const QString& file, const QString& topic);
    // The topic of the page shown, "" for the contents and a search.
    QString shownTopic() const;
    QUrl shownAddress() const;
    HelpBrowser* browser() const { return m_browser; }
    // Lists the pages that have every word, as Enter in the search box does.
    void search(const QString& words);

    // Opens (or reuses) the help window at a topic ("" for the contents).
    static frmHelp* showFile(const QString& file, const QString& topic = QString());
    // The help window, when one is open.
    static frmHelp* current();

public slots:
    // Also shows the page anew when the language, and so the help, changed.
    void TranslateForm();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QToolButton* navigationButton(const char* name, const char* icon, const QKeySequence& keys);
    void buildLayout();
    void connectControls();
    static void describe(QToolButton* button, const QString& caption, const QKeySequence& keys);
    bool usePages(const QString& file);
    void showContents();
    void clearSearch();
    QString resultsPage(const QString& query);

    HelpBrowser* m_browser;
    QToolButton* cmdBack;
    QToolButton* cmdForward;
    QToolButton* cmdContents;
    QLineEdit* txtSearch;
    QPushButton* cmdSearch;
    // Read when first searched, for the language then shown.
    std::unique_ptr<HelpSearch> m_search;
};
