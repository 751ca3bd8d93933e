#include "frmSplash.h"

#include "AppGlobals.h"
#include "clsXMLocalizer.h"

#include "AppPaths.h"
#include "MediaSource.h"

#include <QApplication>
#include <QFileInfo>
#include <QLabel>
#include <QLinearGradient>
#include <QMediaPlayer>
#include <QMovie>
#include <QPainter>
#include <QScreen>
#include <QTimer>
#include <QUrl>
#include <QVideoFrame>
#include <QVideoSink>

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
    if (file.isEmpty())
        return;
    const QString path = QFileInfo(file).isRelative() ? AppPaths::programFolder() + file : file;
    if (playMovie(path))
        return;
    const QPixmap picture(path);
    if (!picture.isNull())
        return show(picture);
    if (QFileInfo(path).isFile())
        playVideo(path);
}

// Shown no larger than a splash should be; the window takes the picture's size.
void frmSplash::show(const QPixmap& picture) {
    m_picture = picture.scaled(QSize(480, 300).boundedTo(picture.size()), Qt::KeepAspectRatio,
                               Qt::SmoothTransformation);
    setFixedSize(m_picture.size());
    lblLoading->setGeometry(20, height() - 36, width() - 40, 24);
    update();
}

// An animated picture plays its frames once round.
bool frmSplash::playMovie(const QString& file) {
    auto* movie = new QMovie(file, QByteArray(), this);
    if (!movie->isValid() || movie->frameCount() < 2) {
        delete movie;
        return false;
    }
    m_movie = movie;
    movie->jumpToFrame(0);
    show(movie->currentPixmap());
    connect(movie, &QMovie::frameChanged, this, [this] {
        if (++m_framesPlayed > m_movie->frameCount())
            return finish();
        show(m_movie->currentPixmap());
    });
    return true;
}

// A video plays until it ends; its first picture sets the splash's size.
void frmSplash::playVideo(const QString& file) {
    m_player = new QMediaPlayer(this);
    m_sink = new QVideoSink(this);
    m_player->setVideoSink(m_sink);
    connect(m_sink, &QVideoSink::videoFrameChanged, this, &frmSplash::takeFrame);
    connect(m_player, &QMediaPlayer::mediaStatusChanged, this,
            [this](QMediaPlayer::MediaStatus status) {
                if (status == QMediaPlayer::EndOfMedia || status == QMediaPlayer::InvalidMedia)
                    finish();
            });
    MediaSource::open(*m_player, file);
}

void frmSplash::takeFrame(const QVideoFrame& frame) {
    const QImage picture = frame.toImage();
    if (!picture.isNull())
        show(QPixmap::fromImage(picture));
}

// What plays ends the splash when it ends, within a longest time.
void frmSplash::startPlayback(int durationMs) {
    if (const QScreen* screen = QGuiApplication::primaryScreen())
        move(screen->availableGeometry().center() - rect().center());
    QWidget::show();
    const bool plays = m_movie || m_player;
    m_timer->start(plays ? kLongestPlayMs : durationMs);
    if (m_movie)
        m_movie->start();
    if (m_player)
        m_player->play();
}

void frmSplash::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.drawPixmap(0, 0, m_picture);
}

void frmSplash::mousePressEvent(QMouseEvent*) {
    finish();
}

void frmSplash::finish() {
    if (m_closing)
        return;
    m_closing = true;
    if (m_movie)
        m_movie->stop();
    if (m_player)
        m_player->stop();
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
