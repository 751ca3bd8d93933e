#include "PhoneConnection.h"

#include "AppGlobals.h"
#include "DialogService.h"
#include "TransferOptions.h"
#include "clsMMSCommunication.h"
#include "clsPropertiesXML.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>

namespace {
QString text(const char* key, const char* fallback) {
    return AppGlobals::text(key, fallback);
}

constexpr int kBlinkMs = 500;

// A lamp, drawn rather than shipped, lit or dark.
QPixmap lamp(const QColor& colour) {
    QPixmap picture(12, 12);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(colour.darker(160));
    painter.setBrush(colour);
    painter.drawEllipse(QRectF(1, 1, 10, 10));
    return picture;
}
} // namespace

PhoneConnection::PhoneConnection(QWidget* window)
    : QObject(window), m_window(window), m_indicator(new QWidget), m_lamp(new QLabel),
      lblPhone(new QLabel), m_on(lamp(QColor(40, 190, 60))), m_off(lamp(QColor(150, 150, 150))) {
    lblPhone->setObjectName(QStringLiteral("lblPhone"));
    auto* layout = new QHBoxLayout(m_indicator);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_lamp);
    layout->addWidget(lblPhone);
    m_blink.setInterval(kBlinkMs);
    connect(&m_blink, &QTimer::timeout, this, [this] { light(!m_lit); });
}

PhoneConnection::~PhoneConnection() = default;

void PhoneConnection::setUp() {
    clsPropertiesXML* settings = AppGlobals::settings();
    if (!settings)
        return;
    const int kind = settings->GetProp("preferences", "CommunicationType", "1").toInt();
    m_connection = std::make_unique<clsMMSCommunication>(
        clsMMSCommunication::adapters(TransferOptions::fromSettings(settings)));
    connect(m_connection.get(), &clsMMSCommunication::Connect, this,
            &PhoneConnection::mComm_Connect);
    const int made = m_connection->Initialize(kind);
    if (made == 0 && kind != 0) {
        DialogService::messageBox(m_window,
                                  text("STR_COM_INFO1", "The selected connection to the phone "
                                                        "is not available on this computer.") +
                                      QStringLiteral("\n\n") +
                                      text("STR_COM_INFO2", "Choose another connection type in "
                                                            "the settings."),
                                  text("STR_COM_INFO_TITLE", "Phone connection"), QMessageBox::Ok,
                                  QMessageBox::Warning);
        settings->SetProp("preferences", "CommunicationType", QString::number(made));
        settings->SaveXmlFile();
    }
    if (made == 1)
        m_connection->SetIrDaCommandline(irDaCommandline(*settings));
    showState();
}

void PhoneConnection::mComm_Connect(bool connected, int, const QString& device) {
    showState();
    emit Connect(connected, device);
}

void PhoneConnection::TranslateControl() {
    showState();
}

void PhoneConnection::showState() {
    const bool connected = m_connection && m_connection->isConnected();
    QString state;
    if (!m_connection || m_connection->activeKind() == 0)
        state = text("STR_PHONE_OFF", "Sending switched off");
    else if (connected)
        state = AppGlobals::text("STR_PHONE_CONNECTED", "Phone connected: %0",
                                 {m_connection->deviceName()});
    else
        state = text("STR_NO_DEVICE_CONNECTED", "No phone is connected.");
    lblPhone->setText(state);
    const bool blinking =
        connected && AppGlobals::setting("preferences", "BlinkLed", "1") == QLatin1String("1");
    blinking ? m_blink.start() : m_blink.stop();
    light(connected);
}

void PhoneConnection::light(bool lit) {
    m_lit = lit;
    m_lamp->setPixmap(lit ? m_on : m_off);
}
