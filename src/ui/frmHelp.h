#pragma once

#include <QWidget>

class QTextBrowser;

// The program's own help window: shows the HTML help page of the language.
// It is a window of its own, so it can be read beside a dialog that waits
// for an answer.
class frmHelp : public QWidget {
    Q_OBJECT
public:
    frmHelp();
    void load(const QString& file, const QString& topic);
    QString shownTopic() const;

    // Opens (or reuses) the help window and shows the file at the part that
    // tells of topic ("" for the top).
    static frmHelp* showFile(const QString& file, const QString& topic = QString());
    // The help window, when one is open.
    static frmHelp* current();
    // The part of the help that tells of a window, by the window's name.
    static QString topicOf(const QWidget* window);

private:
    QTextBrowser* m_browser;
};
