#include "SmilTimeline.h"

#include <algorithm>

QList<const SmilTimeline::Item*> SmilTimeline::itemsAt(qint64 ms) const {
    QList<const Item*> playing;
    for (const Item& item : m_items)
        if (item.start <= ms && ms < item.end)
            playing << &item;
    return playing;
}

QList<int> SmilTimeline::visibleAt(qint64 ms) const {
    QList<int> shown;
    for (int i = 0; i < m_items.size(); ++i)
        if (isVisible(m_items[i].kind) && m_items[i].start <= ms && ms < m_items[i].end)
            shown << i;
    return shown;
}

QList<qint64> SmilTimeline::visibleChanges() const {
    QList<qint64> candidates{0};
    for (const Item& item : m_items)
        if (isVisible(item.kind))
            candidates << item.start << item.end;
    std::sort(candidates.begin(), candidates.end());
    candidates.erase(std::unique(candidates.begin(), candidates.end()), candidates.end());
    const qint64 end = duration();
    QList<qint64> changes;
    QList<int> previous;
    for (const qint64 ms : candidates) {
        if (ms > 0 && ms >= end)
            break;
        const QList<int> shown = visibleAt(ms);
        if (changes.isEmpty() || shown != previous)
            changes << ms;
        previous = shown;
    }
    return changes;
}

void SmilTimeline::setScreen(QSize size, QColor background) {
    m_size = size;
    m_background = background;
}

void SmilTimeline::closeOpenItems(qsizetype first, qint64 ms) {
    for (qsizetype i = first; i < m_items.size(); ++i)
        if (m_items[i].end == kOpenEnd)
            m_items[i].end = std::max(ms, m_items[i].start);
}

void SmilTimeline::addProblem(const QString& problem) {
    if (m_problems.size() < kMaxProblems && !m_problems.contains(problem))
        m_problems << problem;
}
