#pragma once

#include "SmilTimeline.h"

#include <QHash>
#include <optional>
#include <pugixml.hpp>

// Reads a presentation, ours or another program's, into a SmilTimeline:
// par children play together, seq children one after another, begin, end
// and dur move and cut them, and what has no duration of its own takes it
// from its media (a sound's or video's length, a picture's timed siblings).
// Media are looked up only inside the presentation's folder. What cannot be
// used is left out and named in the timeline's problems; hostile files meet
// limits on nesting, item count, length and size.
class SmilTimelineReader {
public:
    // False, with the reason among the problems, only when the file is no
    // presentation at all; otherwise the timeline holds what could be used.
    static bool read(const QString& smilPath, SmilTimeline& timeline);

    static constexpr int kMaxDepth = 32;
    static constexpr int kMaxItems = 2000;
    static constexpr qint64 kMaxFileBytes = 4 * 1024 * 1024;
    static constexpr int kMaxScreenEdge = 2048;

private:
    // When an element plays; open when it has no duration of its own yet and
    // ends with whatever contains it.
    struct Span {
        qint64 begin = 0;
        qint64 end = 0;
        bool open = false;
    };

    SmilTimelineReader(const QString& smilPath, SmilTimeline& timeline);
    bool readFile();
    void readLayout(const pugi::xml_node& layout);
    QRect regionRect(const pugi::xml_node& region) const;
    Span time(const pugi::xml_node& node, qint64 syncBase, qint64 limit, int depth);
    Span timeContent(const pugi::xml_node& node, qint64 begin, qint64 limit, int depth);
    Span timeTogether(const pugi::xml_node& node, qint64 begin, qint64 limit, int depth);
    Span timeInTurn(const pugi::xml_node& node, qint64 begin, qint64 limit, int depth);
    Span timeMedia(const pugi::xml_node& node, qint64 begin, qint64 limit);
    std::optional<qint64> explicitEnd(const pugi::xml_node& node, qint64 syncBase, qint64 begin);
    qint64 offset(const pugi::xml_node& node, const char* attribute);
    QString mediaFile(const QString& source);
    QString cidFile(const QString& contentId);
    qint64 lengthOf(const QString& file, SmilTimeline::Kind kind);
    QString textOf(const QString& file);
    void problem(const QString& key, const QString& fallback, const QStringList& parameters);

    const QString m_smilPath;
    const QString m_folder;
    SmilTimeline& m_timeline;
    pugi::xml_document m_document;
    QHash<QString, QRect> m_regionAreas;
    QHash<QString, qint64> m_lengths;
    QHash<QString, QString> m_namesWithoutExtension;
};
