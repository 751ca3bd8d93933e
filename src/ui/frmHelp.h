#pragma once

#include <QWidget>

class QTextBrowser;

// The program's own help window: shows the HTML help page of the language.
class frmHelp : public QWidget {
    Q_OBJECT
public:
    explicit frmHelp(QWidget* parent = nullptr);
    void load(const QString& file);

    // Opens (or reuses) the help window of the parent and shows the file.
    static frmHelp* showFile(const QString& file, QWidget* parent);

private:
    QTextBrowser* m_browser;
};
