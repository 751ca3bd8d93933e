#pragma once

#include <QDialog>

class QLabel;
class QPushButton;
class QTextBrowser;

// The program's name and version, and the libraries it is built on with
// their licences, as the licences ask.
class frmAbout : public QDialog {
    Q_OBJECT
public:
    explicit frmAbout(QWidget* parent = nullptr);
    // "Vellumo version: 1.2.3".
    static QString versionLine();

public slots:
    void TranslateForm();

private:
    QLabel* lblVersion;
    QTextBrowser* txtLibraries;
    QPushButton* cmdOk;
};
