#include "SmilVideoPlayer.h"

#include "AppGlobals.h"
#include "MediaSource.h"

#include <QFileInfo>
#include <QMediaPlayer>
#include <QUrl>
#include <QVideoFrame>
#include <QVideoSink>

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
    MediaSource::open(*m_player, item.file);
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
