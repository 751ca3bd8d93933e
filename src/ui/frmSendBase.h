#pragma once

#include <QDialog>

class QHBoxLayout;
class QLabel;
class QProgressBar;
class QPushButton;
class QVBoxLayout;
class clsMMSCommunication;

// What both send dialogs share: a status line, an error line, a hint, a
// progress bar and the close button, and how a transfer's result is told.
// Results are never shown in a message box: the dialog stays as it is, so
// the user can read them and try again.
class frmSendBase : public QDialog {
    Q_OBJECT
public:
    frmSendBase(clsMMSCommunication& connection, QWidget* parent);

    void SetStatusTxt(const QString& text);
    QString statusText() const;
    QString errorText() const;

public slots:
    virtual void TranslateForm();
    // Refused while a transfer runs: closing cannot stop it.
    void reject() override;

protected:
    void closeEvent(QCloseEvent* event) override;
    // Sends path and tells how it went; false unless it arrived.
    bool sendFile(const QString& path);
    void setError(const QString& text);
    void setHint(const QString& text);
    // The close button is shut while a transfer runs.
    void setWorking(bool working);
    QVBoxLayout* content() const { return m_content; }
    // A button of the dialog's own, beside the close button.
    void addButton(QPushButton* button);
    QProgressBar* progress() const { return prgDownload; }
    QPushButton* closeButton() const { return cmdClose; }
    clsMMSCommunication& connection() const { return m_connection; }

private:
    void showResult(int code);
    static void showLine(QLabel* label, const QString& text);

    clsMMSCommunication& m_connection;
    QVBoxLayout* m_content;
    QLabel* lblStatus;
    QLabel* lblError;
    QLabel* lblInfo;
    QProgressBar* prgDownload;
    QPushButton* cmdClose;
    QHBoxLayout* m_buttons;
    bool m_working = false;
};
