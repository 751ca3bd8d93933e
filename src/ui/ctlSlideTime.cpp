#include "ctlSlideTime.h"

#include "AppGlobals.h"

#include <cmath>
#include <limits>

namespace {
// Slide times are 32-bit milliseconds, and a slide lasts at least one.
constexpr double kMaxMs = std::numeric_limits<qint32>::max();
} // namespace

ctlSlideTime::ctlSlideTime(QWidget* parent) : QDoubleSpinBox(parent) {
    setObjectName(QStringLiteral("txtSlideTime"));
    setKeyboardTracking(false);
    setAccelerated(true);
    setTimeFormat(QStringLiteral("ms"));
    connect(this, &QDoubleSpinBox::valueChanged, this, [this] {
        if (!m_setting)
            emit durationEdited(duration());
    });
    TranslateControl();
}

void ctlSlideTime::setTimeFormat(const QString& format) {
    const qint64 kept = duration();
    m_seconds = format == QLatin1String("s");
    m_setting = true;
    setDecimals(m_seconds ? 1 : 0);
    setSingleStep(m_seconds ? 0.5 : 100);
    setRange(m_seconds ? 0.1 : 1, m_seconds ? kMaxMs / 1000 : kMaxMs);
    setSuffix(m_seconds ? QStringLiteral(" s") : QStringLiteral(" ms"));
    m_setting = false;
    setDuration(kept);
}

void ctlSlideTime::setDuration(qint64 ms) {
    m_setting = true;
    setValue(m_seconds ? double(ms) / 1000.0 : double(ms));
    m_setting = false;
}

qint64 ctlSlideTime::duration() const {
    return qint64(std::llround(m_seconds ? value() * 1000.0 : value()));
}

void ctlSlideTime::TranslateControl() {
    setAccessibleName(AppGlobals::text("STR_SLIDE_TIME", "Slide ti&me").remove(u'&'));
    setToolTip(AppGlobals::text("STR_TOOLTIP_SLIDETIME", "How long the slide is shown"));
}
