#include "frmSplash.h"

#include "AppGlobals.h"
#include "clsXMLocalizer.h"

#include <QApplication>
#include <QLabel>
#include <QLinearGradient>
#include <QPainter>
#include <QScreen>
#include <QTimer>

frmSplash::frmSplash(QWidget* parent)
    : QWidget(parent, Qt::SplashScreen | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint),
      m_picture(drawnPicture()), lblLoading(new QLabel(this)), m_timer(new QTimer(this)) {
    setObjectName("frmSplash");
    setAttribute(Qt::WA_DeleteOnClose);
    lblLoading->setObjectName("lblLoading");
    lblLoading->setStyleSheet("color: white;");
    m_timer->setSingleShot(true);
    connect(m_timer, &QTimer::timeout, this, &frmSplash::finish);
    if (clsXMLocalizer* localizer = AppGlobals::localizer())
        localizer->TranslateForm(this);
    setFixedSize(m_picture.size());
    lblLoading->setGeometry(20, height() - 36, width() - 40, 24);
}

void frmSplash::setVideo(const QString& file) {
    const QPixmap picture(file);
    if (picture.isNull())
        return;
    m_picture = picture.scaled(480, 300, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    setFixedSize(m_picture.size());
    lblLoading->setGeometry(20, height() - 36, width() - 40, 24);
}

void frmSplash::startPlayback(int durationMs) {
    if (const QScreen* screen = QGuiApplication::primaryScreen())
        move(screen->availableGeometry().center() - rect().center());
    show();
    m_timer->start(durationMs);
}

void frmSplash::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.drawPixmap(0, 0, m_picture);
}

void frmSplash::mousePressEvent(QMouseEvent*) {
    finish();
}

void frmSplash::finish() {
    m_closing = true;
    close();
}

QPixmap frmSplash::drawnPicture() {
    QPixmap picture(420, 240);
    QPainter painter(&picture);
    QLinearGradient gradient(0, 0, 420, 240);
    gradient.setColorAt(0, QColor(0x2a, 0x4d, 0x8f));
    gradient.setColorAt(1, QColor(0x8f, 0x2a, 0x6d));
    painter.fillRect(picture.rect(), gradient);
    painter.setPen(Qt::white);
    QFont title = painter.font();
    title.setPointSize(34);
    title.setBold(true);
    painter.setFont(title);
    painter.drawText(QRect(0, 50, 420, 80), Qt::AlignCenter, QStringLiteral("Vellumo"));
    QFont subtitle = painter.font();
    subtitle.setPointSize(11);
    subtitle.setBold(false);
    painter.setFont(subtitle);
    painter.drawText(QRect(0, 130, 420, 30), Qt::AlignCenter, QApplication::applicationVersion());
    return picture;
}
