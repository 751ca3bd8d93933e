#pragma once

#include <QObject>
#include <QPixmap>
#include <QTimer>
#include <memory>

class QLabel;
class QWidget;
class clsMMSCommunication;

// The main window's way to the phone: the connection the settings choose,
// set up at start and again after the settings change, and the indicator
// in the status bar that shows whether a phone is there (blinking while one
// is, when "BlinkLed" says so).
class PhoneConnection : public QObject {
    Q_OBJECT
public:
    explicit PhoneConnection(QWidget* window);
    ~PhoneConnection() override;

    // Makes the connection "CommunicationType" names. A kind this computer
    // does not have is said once, and the setting keeps what could be made.
    void setUp();
    clsMMSCommunication& connection() const { return *m_connection; }
    // The lamp and the words, for the status bar.
    QWidget* indicator() const { return m_indicator; }
    bool lampLit() const { return m_lit; }
    void TranslateControl();

signals:
    // Passed on from the connection, which may be made anew.
    void Connect(bool connected, const QString& device);

private:
    void mComm_Connect(bool connected, int value, const QString& device);
    void showState();
    void light(bool lit);

    QWidget* m_window;
    std::unique_ptr<clsMMSCommunication> m_connection;
    QWidget* m_indicator;
    QLabel* m_lamp;
    QLabel* lblPhone;
    QTimer m_blink;
    bool m_lit = false;
    QPixmap m_on;
    QPixmap m_off;
};
