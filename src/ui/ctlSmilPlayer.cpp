#include "ctlSmilPlayer.h"

#include "AppGlobals.h"
#include "Clock.h"
#include "SmilFrameRenderer.h"
#include "SmilTimelineReader.h"

#include <QPainter>
#include <algorithm>

namespace {
// Often enough for a picture to change on time, seldom enough to cost nothing.
constexpr int kTickMs = 40;
} // namespace

ctlSmilPlayer::ctlSmilPlayer(QWidget* parent) : QWidget(parent) {
    setObjectName("ctlSmilPlayer");
    setAccessibleName(AppGlobals::text("STR_SMIL_PLAYER", "Presentation player"));
    m_timer.setInterval(kTickMs);
    connect(&m_timer, &QTimer::timeout, this, &ctlSmilPlayer::tick);
    connect(&m_video, &SmilVideoPlayer::pictureChanged, this, &ctlSmilPlayer::compose);
    connect(&m_video, &SmilVideoPlayer::failed, this, &ctlSmilPlayer::addProblem);
}

ctlSmilPlayer::~ctlSmilPlayer() = default;

bool ctlSmilPlayer::open(const QString& smilPath) {
    stop();
    const bool read = SmilTimelineReader::read(smilPath, m_timeline);
    m_renderer = std::make_unique<SmilFrameRenderer>(m_timeline);
    m_changes = m_timeline.visibleChanges();
    m_playProblems.clear();
    m_position = 0;
    m_shownChange = -1;
    showAt(0);
    updateGeometry();
    return read;
}

void ctlSmilPlayer::play() {
    stop();
    if (!m_renderer)
        return;
    m_startTick = Clock::instance().tickCount();
    m_position = 0;
    m_shownChange = -1;
    showAt(0);
    startSounds(-1, 0);
    followVideo(0);
    m_timer.start();
}

void ctlSmilPlayer::stop() {
    if (!isPlaying())
        return;
    m_timer.stop();
    m_sound.stop();
    m_video.stop();
    emit stopped();
}

QStringList ctlSmilPlayer::problems() const {
    QStringList all = m_timeline.problems();
    if (m_renderer)
        all += m_renderer->problems();
    return all + m_playProblems;
}

QSize ctlSmilPlayer::sizeHint() const {
    return m_frame.isNull() ? SmilTimeline::kDefaultScreen : m_frame.size();
}

// Time is read from the clock, never counted in ticks, so a late tick
// costs no time and the presentation keeps its length.
void ctlSmilPlayer::tick() {
    const qint64 elapsed = std::uint32_t(Clock::instance().tickCount() - m_startTick);
    const qint64 previous = m_position;
    m_position = std::min(elapsed, duration());
    showAt(m_position);
    emit positionChanged(m_position, duration());
    if (m_position >= duration()) {
        stop();
        return;
    }
    startSounds(previous, m_position);
    followVideo(m_position);
}

// A new picture is painted only when what is shown changes.
void ctlSmilPlayer::showAt(qint64 ms) {
    const auto after = std::upper_bound(m_changes.cbegin(), m_changes.cend(), ms);
    const qsizetype change = std::max<qsizetype>(0, after - m_changes.cbegin() - 1);
    if (change == m_shownChange)
        return;
    m_shownChange = change;
    m_frame = m_renderer->render(m_changes.value(change));
    compose();
}

// The video whose turn it is plays; the latest to begin wins, and when
// none is due none plays.
void ctlSmilPlayer::followVideo(qint64 ms) {
    const SmilTimeline::Item* due = nullptr;
    for (const SmilTimeline::Item* item : m_timeline.itemsAt(ms))
        if (item->kind == SmilTimeline::Kind::Video && (!due || item->start >= due->start))
            due = item;
    if (due)
        m_video.play(*due);
    else
        m_video.stop();
}

// The video's picture goes over its first picture, fitted into its area the
// way the renderer fits pictures.
void ctlSmilPlayer::compose() {
    m_shown = m_frame;
    const QImage& video = m_video.picture();
    if (!video.isNull() && !m_shown.isNull()) {
        const QRect area = m_video.area();
        const QSize size = video.size().scaled(area.size(), Qt::KeepAspectRatio);
        const QPoint at = area.topLeft() + QPoint((area.width() - size.width()) / 2,
                                                  (area.height() - size.height()) / 2);
        QPainter painter(&m_shown);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        painter.drawImage(QRect(at, size), video);
    }
    update();
}

void ctlSmilPlayer::addProblem(const QString& why) {
    if (!m_playProblems.contains(why))
        m_playProblems << why;
}

// Sounds that began after one reading of the clock and up to the next; a
// presentation plays one sound at a time, the latest to begin.
void ctlSmilPlayer::startSounds(qint64 after, qint64 upTo) {
    for (const SmilTimeline::Item& item : m_timeline.items()) {
        if (item.kind != SmilTimeline::Kind::Audio || item.start <= after || item.start > upTo ||
            item.end <= upTo)
            continue;
        QString why;
        if (!m_sound.play(item.file, &why))
            addProblem(why);
    }
}

void ctlSmilPlayer::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette().window());
    if (m_shown.isNull())
        return;
    const QSize drawn = m_shown.size().scaled(size(), Qt::KeepAspectRatio);
    const QRect target(QPoint((width() - drawn.width()) / 2, (height() - drawn.height()) / 2),
                       drawn);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(target, m_shown);
}
