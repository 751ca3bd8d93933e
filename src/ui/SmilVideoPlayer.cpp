#include "SmilVideoPlayer.h"

#include "AppGlobals.h"

#include <QFileInfo>
#include <QMediaPlayer>
#include <QUrl>
#include <QVideoFrame>
#include <QVideoSink>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

namespace {
// Qt's FFmpeg backend (6.4) opens each decoder with an options dictionary it
// never frees: a few bytes per video, not ours to mend, which would otherwise
// bury the leak checker's findings in our own code.
void openSource(QMediaPlayer& player, const QString& file) {
#ifdef __SANITIZE_ADDRESS__
    __lsan::ScopedDisabler foreignLeak;
#endif
    player.setSource(QUrl::fromLocalFile(file));
}
} // namespace

SmilVideoPlayer::SmilVideoPlayer(QObject* parent)
    : QObject(parent), m_player(new QMediaPlayer(this)), m_sink(new QVideoSink(this)) {
    m_player->setVideoSink(m_sink);
    connect(m_sink, &QVideoSink::videoFrameChanged, this, &SmilVideoPlayer::takeFrame);
    connect(m_player, &QMediaPlayer::errorOccurred, this, [this](QMediaPlayer::Error error) {
        if (error == QMediaPlayer::NoError || !isActive())
            return;
        emit failed(AppGlobals::text("STR_SMIL_VIDEO_FAILED", "The video %0 cannot be played.",
                                     {QFileInfo(m_file).fileName()}));
    });
}

SmilVideoPlayer::~SmilVideoPlayer() = default;

// The same file may play twice in a row from different items; the start
// time tells them apart.
void SmilVideoPlayer::play(const SmilTimeline::Item& item) {
    if (item.file == m_file && item.start == m_start)
        return;
    stop();
    m_file = item.file;
    m_start = item.start;
    m_area = item.area;
    openSource(*m_player, item.file);
    m_player->play();
}

void SmilVideoPlayer::stop() {
    if (!isActive())
        return;
    m_file.clear();
    m_start = -1;
    m_player->stop();
    m_player->setSource(QUrl());
    m_picture = QImage();
    emit pictureChanged();
}

void SmilVideoPlayer::takeFrame(const QVideoFrame& frame) {
    if (!isActive() || !frame.isValid())
        return;
    m_picture = frame.toImage();
    emit pictureChanged();
}
