#pragma once

#include <QDialog>
#include <QStringList>

class QLabel;
class QListWidget;
class QPushButton;
class TabStopDelegate;
class SendForm;
class clsMMSManager;
class clsMessage;

// How large a message will be when it is sent: the message manager writes
// the message's parts as they would be sent, the list shows each part with
// its size in bytes under the heading of its slide, and the status line the
// total in kilobytes. The message itself is left exactly as it was.
class frmMmsInfo : public QDialog {
    Q_OBJECT
public:
    explicit frmMmsInfo(clsMMSManager& manager, QWidget* parent = nullptr);

    // Opens the window on message, or says there is none open (nullptr).
    // The window closes itself away.
    static frmMmsInfo* showFor(QWidget* parent, clsMMSManager& manager, const clsMessage* message);

    // Measures message and lists its parts; false, with the reason in the
    // status line, when it cannot be written as it would be sent.
    bool SetMessage(const clsMessage& message);
    // Sets the list's tab stops so that the names and the sizes line up.
    void DoTabs();

    QStringList lines() const;
    qint64 totalBytes() const { return m_total; }
    // The status line with a total: "Total size: 1.50 KB".
    static QString totalText(qint64 bytes);
    QString status() const;

public slots:
    void TranslateForm();

signals:
    // Each text the status line shows, as it shows it.
    void statusChanged(const QString& text);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void showClass(const SendForm& form);
    void mMmsManager_ProsessingSlide(int slide, int count);
    void setStatus(const QString& text);
    void copyLines();

    clsMMSManager& m_manager;
    QListWidget* listBoxInfo;
    TabStopDelegate* m_tabs;
    QLabel* lblStatus;
    QLabel* lblClass;
    QPushButton* cmdCopy;
    QPushButton* cmdClose;
    qint64 m_total = 0;
    bool m_measured = false;
    int m_lastSlide = 0;
};
