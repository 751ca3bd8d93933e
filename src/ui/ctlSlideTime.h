#pragma once

#include <QDoubleSpinBox>

// The slide-time field: a duration kept in milliseconds, shown and typed in
// seconds or in milliseconds as the "MMSTimeFormat" setting says ("s" for
// seconds; "ms" and anything else for milliseconds).
class ctlSlideTime : public QDoubleSpinBox {
    Q_OBJECT
public:
    explicit ctlSlideTime(QWidget* parent = nullptr);

    void setTimeFormat(const QString& format);
    bool showsSeconds() const { return m_seconds; }
    // Shows ms without raising durationEdited.
    void setDuration(qint64 ms);
    qint64 duration() const;
    void TranslateControl();

signals:
    // The user changed the time; ms is the new duration.
    void durationEdited(qint64 ms);

private:
    bool m_seconds = false;
    bool m_setting = false;
};
