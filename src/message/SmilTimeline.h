#pragma once

#include <QColor>
#include <QList>
#include <QRect>
#include <QSize>
#include <QString>
#include <QStringList>

// A presentation laid out in time: the screen and its regions, and every
// media item with the milliseconds during which it plays. Built by
// SmilTimelineReader; what could not be used is listed in problems().
class SmilTimeline {
public:
    enum class Kind { Picture, Text, Audio, Video };

    struct Region {
        QString id;
        QRect rect;
        QColor background; // invalid: transparent
    };

    struct Item {
        Kind kind = Kind::Picture;
        qint64 start = 0;
        qint64 end = 0; // exclusive
        QString file;   // full path inside the presentation's folder
        QString text;   // a text item's content
        QRect area;     // where it is drawn on the screen
    };

    QSize size() const { return m_size; }
    QColor background() const { return m_background; }
    const QList<Region>& regions() const { return m_regions; }
    const QList<Item>& items() const { return m_items; }
    const QStringList& problems() const { return m_problems; }
    // When the presentation ends, which may be after its last item.
    qint64 duration() const { return m_duration; }

    // The items playing at ms, in the order the presentation names them.
    QList<const Item*> itemsAt(qint64 ms) const;
    // Every time from 0 up to the end at which the pictures and texts shown
    // change, in order; always starts with 0.
    QList<qint64> visibleChanges() const;
    static bool isVisible(Kind kind) { return kind != Kind::Audio; }

    void setScreen(QSize size, QColor background);
    void setDuration(qint64 ms) { m_duration = ms; }
    void addRegion(const Region& region) { m_regions << region; }
    void addItem(const Item& item) { m_items << item; }
    // The items from index first on that have no end yet end at ms.
    void closeOpenItems(qsizetype first, qint64 ms);
    void addProblem(const QString& problem);

    static constexpr qint64 kOpenEnd = -1;
    // The screen of a presentation that does not say its size: the one we export.
    static constexpr QSize kDefaultScreen{160, 160};
    // A hostile file can name a thousand missing files; the first are enough.
    static constexpr int kMaxProblems = 50;

private:
    QList<int> visibleAt(qint64 ms) const;

    QSize m_size{kDefaultScreen};
    qint64 m_duration = 0;
    QColor m_background{Qt::white};
    QList<Region> m_regions;
    QList<Item> m_items;
    QStringList m_problems;
};
