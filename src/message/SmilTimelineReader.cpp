#include "SmilTimelineReader.h"

#include "AppGlobals.h"
#include "AppPaths.h"
#include "FfmpegDecoder.h"
#include "PlainFileName.h"
#include "SmilTime.h"
#include "TextDecoder.h"
#include "modPlaySound.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QUrl>
#include <algorithm>

namespace {
constexpr qint64 kMaxTextBytes = 64 * 1024;

QString attribute(const pugi::xml_node& node, const char* name) {
    return QString::fromUtf8(node.attribute(name).value()).trimmed();
}

// "background-color" in older presentations, "backgroundColor" in newer ones.
QColor backgroundOf(const pugi::xml_node& node) {
    QString name = attribute(node, "background-color");
    if (name.isEmpty())
        name = attribute(node, "backgroundColor");
    return QColor::fromString(name);
}

// "40", "40px" or "25%" of whole; nothing when absent or unreadable.
std::optional<int> length(const QString& text, int whole) {
    QString value = text;
    const bool percent = value.endsWith(u'%');
    if (percent)
        value.chop(1);
    else if (value.endsWith(QLatin1String("px")))
        value.chop(2);
    bool ok = false;
    const double number = value.toDouble(&ok);
    if (!ok || number < 0)
        return std::nullopt;
    const double pixels = percent ? number * whole / 100 : number;
    return int(std::min<double>(pixels, SmilTimelineReader::kMaxScreenEdge));
}

bool isTogether(const QString& name) {
    // "a" is a link around its media, which play as if it were not there.
    return name == QLatin1String("par") || name == QLatin1String("excl") ||
           name == QLatin1String("a");
}

bool isInTurn(const QString& name) {
    return name == QLatin1String("seq") || name == QLatin1String("body");
}

bool isMedia(const QString& name) {
    static const QStringList media{"img", "text",      "audio",     "video",
                                   "ref", "animation", "textstream"};
    return media.contains(name);
}

// A "ref" says nothing of its media: the file name does.
SmilTimeline::Kind kindOf(const QString& element, const QString& file) {
    static const QStringList sounds{"wav", "amr", "awb", "mid", "midi",
                                    "mp3", "aac", "ogg", "m4a", "imy"};
    static const QStringList videos{"mp4", "3gp", "avi", "mpg", "mpeg"};
    const QString extension = QFileInfo(file).suffix().toLower();
    if (element == QLatin1String("audio"))
        return SmilTimeline::Kind::Audio;
    if (element == QLatin1String("video") || videos.contains(extension))
        return SmilTimeline::Kind::Video;
    if (element.startsWith(QLatin1String("text")) || extension == QLatin1String("txt"))
        return SmilTimeline::Kind::Text;
    if (sounds.contains(extension))
        return SmilTimeline::Kind::Audio;
    return SmilTimeline::Kind::Picture;
}
} // namespace

bool SmilTimelineReader::read(const QString& smilPath, SmilTimeline& timeline) {
    timeline = SmilTimeline();
    SmilTimelineReader reader(smilPath, timeline);
    if (!reader.readFile())
        return false;
    const pugi::xml_node smil = reader.m_document.child("smil");
    reader.readLayout(smil.child("head").child("layout"));
    const pugi::xml_node body = smil.child("body");
    if (!body) {
        reader.problem("STR_SMIL_NO_BODY", "%0 has no body: the presentation shows nothing.",
                       {smilPath});
        return true;
    }
    const Span whole = reader.time(body, 0, SmilTime::kMaxMs, 0);
    timeline.closeOpenItems(0, whole.end);
    timeline.setDuration(whole.end);
    if (whole.end >= SmilTime::kMaxMs)
        reader.problem("STR_SMIL_TOO_LONG",
                       "The presentation lasts longer than %0 hours; it is cut there.",
                       {QString::number(SmilTime::kMaxMs / 3600000)});
    return true;
}

SmilTimelineReader::SmilTimelineReader(const QString& smilPath, SmilTimeline& timeline)
    : m_smilPath(QFileInfo(smilPath).absoluteFilePath()),
      m_folder(AppPaths::withSlash(QFileInfo(smilPath).absolutePath())), m_timeline(timeline) {}

bool SmilTimelineReader::readFile() {
    QFile file(m_smilPath);
    const bool readable = file.open(QIODevice::ReadOnly) && file.size() <= kMaxFileBytes;
    const QByteArray bytes = readable ? file.read(kMaxFileBytes) : QByteArray();
    if (readable && m_document.load_buffer(bytes.constData(), size_t(bytes.size())) &&
        m_document.child("smil"))
        return true;
    problem("STR_SMIL_NOT_SMIL", "%0 is not a SMIL presentation.", {m_smilPath});
    return false;
}

void SmilTimelineReader::readLayout(const pugi::xml_node& layout) {
    const pugi::xml_node root = layout.child("root-layout");
    QSize size(
        length(attribute(root, "width"), 0).value_or(SmilTimeline::kDefaultScreen.width()),
        length(attribute(root, "height"), 0).value_or(SmilTimeline::kDefaultScreen.height()));
    if (size.isEmpty())
        size = SmilTimeline::kDefaultScreen;
    const QColor background = backgroundOf(root);
    m_timeline.setScreen(size, background.isValid() ? background : QColor(Qt::white));
    for (const pugi::xml_node region : layout.children("region")) {
        const SmilTimeline::Region area{attribute(region, "id"), regionRect(region),
                                        backgroundOf(region)};
        m_timeline.addRegion(area);
        m_regionAreas.insert(area.id, area.rect);
    }
}

// Missing sizes reach to the screen's edge, as a region without them fills
// what is left of the screen.
QRect SmilTimelineReader::regionRect(const pugi::xml_node& region) const {
    const QSize screen = m_timeline.size();
    const int left = length(attribute(region, "left"), screen.width()).value_or(0);
    const int top = length(attribute(region, "top"), screen.height()).value_or(0);
    const int width =
        length(attribute(region, "width"), screen.width()).value_or(screen.width() - left);
    const int height =
        length(attribute(region, "height"), screen.height()).value_or(screen.height() - top);
    return QRect(left, top, width, height).intersected(QRect(QPoint(0, 0), screen));
}

SmilTimelineReader::Span SmilTimelineReader::time(const pugi::xml_node& node, qint64 syncBase,
                                                  qint64 limit, int depth) {
    if (depth > kMaxDepth) {
        problem("STR_SMIL_TOO_DEEP",
                "The presentation is nested deeper than %0 levels; the deeper parts are left out.",
                {QString::number(kMaxDepth)});
        return {syncBase, syncBase, false};
    }
    const qint64 begin = std::min(syncBase + offset(node, "begin"), limit);
    const std::optional<qint64> end = explicitEnd(node, syncBase, begin);
    const qsizetype first = m_timeline.items().size();
    Span span = timeContent(node, begin, end ? std::min(*end, limit) : limit, depth);
    if (end) {
        span = {begin, std::min(*end, limit), false};
        m_timeline.closeOpenItems(first, span.end);
    }
    span.end = std::min(span.end, limit);
    return span;
}

SmilTimelineReader::Span SmilTimelineReader::timeContent(const pugi::xml_node& node, qint64 begin,
                                                         qint64 limit, int depth) {
    const QString name = QString::fromUtf8(node.name());
    if (isTogether(name))
        return timeTogether(node, begin, limit, depth);
    if (isInTurn(name))
        return timeInTurn(node, begin, limit, depth);
    if (name == QLatin1String("switch")) {
        // Of the alternatives the first is the one every player can show.
        const pugi::xml_node chosen = node.find_child(
            [](const pugi::xml_node& child) { return child.type() == pugi::node_element; });
        return chosen ? time(chosen, begin, limit, depth + 1) : Span{begin, begin, false};
    }
    if (isMedia(name))
        return timeMedia(node, begin, limit);
    return {begin, begin, false};
}

// Pictures without a time of their own stay as long as the longest timed
// sibling; when nothing in the par is timed, its container decides.
SmilTimelineReader::Span SmilTimelineReader::timeTogether(const pugi::xml_node& node, qint64 begin,
                                                          qint64 limit, int depth) {
    const qsizetype first = m_timeline.items().size();
    qint64 end = begin;
    bool timed = false;
    for (const pugi::xml_node child : node.children()) {
        if (child.type() != pugi::node_element)
            continue;
        const Span span = time(child, begin, limit, depth + 1);
        if (!span.open) {
            end = std::max(end, span.end);
            timed = true;
        }
    }
    if (!timed)
        return {begin, begin, true};
    m_timeline.closeOpenItems(first, end);
    return {begin, end, false};
}

SmilTimelineReader::Span SmilTimelineReader::timeInTurn(const pugi::xml_node& node, qint64 begin,
                                                        qint64 limit, int depth) {
    qint64 at = begin;
    for (const pugi::xml_node child : node.children()) {
        if (child.type() != pugi::node_element || at >= limit)
            continue;
        const qsizetype first = m_timeline.items().size();
        const Span span = time(child, at, limit, depth + 1);
        if (span.open && m_timeline.items().size() > first)
            problem("STR_SMIL_NO_DURATION",
                    "A part of the presentation at %0 s has no duration and is not shown.",
                    {QString::number(double(span.begin) / 1000)});
        m_timeline.closeOpenItems(first, span.begin);
        at = std::max(at, span.end);
    }
    return {begin, at, false};
}

SmilTimelineReader::Span SmilTimelineReader::timeMedia(const pugi::xml_node& node, qint64 begin,
                                                       qint64 limit) {
    if (m_timeline.items().size() >= kMaxItems) {
        problem("STR_SMIL_TOO_MANY",
                "The presentation has more than %0 media items; the rest are left out.",
                {QString::number(kMaxItems)});
        return {begin, begin, true};
    }
    const QString file = mediaFile(attribute(node, "src"));
    if (file.isEmpty())
        return {begin, begin, true};
    SmilTimeline::Item item;
    item.kind = kindOf(QString::fromUtf8(node.name()), file);
    item.file = file;
    item.start = begin;
    item.end = SmilTimeline::kOpenEnd;
    if (item.kind == SmilTimeline::Kind::Text)
        item.text = textOf(file);
    const qint64 length =
        item.kind == SmilTimeline::Kind::Audio || item.kind == SmilTimeline::Kind::Video
            ? lengthOf(file, item.kind)
            : -1;
    if (length >= 0)
        item.end = std::min(begin + length, limit);
    item.area =
        m_regionAreas.value(attribute(node, "region"), QRect(QPoint(0, 0), m_timeline.size()));
    m_timeline.addItem(item);
    return {begin, item.end == SmilTimeline::kOpenEnd ? begin : item.end, length < 0};
}

std::optional<qint64> SmilTimelineReader::explicitEnd(const pugi::xml_node& node, qint64 syncBase,
                                                      qint64 begin) {
    std::optional<qint64> end;
    const QString dur = attribute(node, "dur");
    if (!dur.isEmpty() && !SmilTime::isIndefinite(dur)) {
        if (const std::optional<qint64> length = SmilTime::parse(dur))
            end = begin + *length;
        else
            problem("STR_SMIL_BAD_TIME", "The time \"%0\" cannot be read and is left out.", {dur});
    }
    if (node.attribute("end") && !SmilTime::isIndefinite(attribute(node, "end"))) {
        const qint64 until = std::max(begin, syncBase + offset(node, "end"));
        end = end ? std::min(*end, until) : until;
    }
    return end;
}

qint64 SmilTimelineReader::offset(const pugi::xml_node& node, const char* name) {
    const QString value = attribute(node, name);
    if (value.isEmpty())
        return 0;
    const std::optional<qint64> ms = SmilTime::parse(value);
    if (!ms)
        problem("STR_SMIL_BAD_TIME", "The time \"%0\" cannot be read and is left out.", {value});
    return ms.value_or(0);
}

// A name of the presentation as a file of its own folder: a URI with
// percent escapes, "./name", or "cid:" naming a part of a received message.
QString SmilTimelineReader::mediaFile(const QString& source) {
    QString name = QUrl::fromPercentEncoding(source.toUtf8());
    if (name.startsWith(QLatin1String("cid:"), Qt::CaseInsensitive))
        name = cidFile(name.mid(4));
    else if (name.startsWith(QLatin1String("./")))
        name = name.mid(2);
    QString why;
    const QString file = PlainFileName::existingFile(m_folder, name, &why);
    if (file.isEmpty()) {
        problem("STR_SMIL_MISSING_MEDIA", "The presentation names %0, which cannot be used: %1.",
                {source, why});
        return QString();
    }
    if (QFileInfo(file).suffix().compare(QLatin1String("smil"), Qt::CaseInsensitive) == 0) {
        if (QFileInfo(file).absoluteFilePath() == m_smilPath)
            problem("STR_SMIL_LOOP", "%0 plays the presentation itself and is left out.", {source});
        else
            problem("STR_SMIL_NESTED",
                    "%0 is a presentation of its own; it is not played inside another.", {source});
        return QString();
    }
    return file;
}

// A message's parts are named by content id, which is the file's name, with
// or without its extension and angle brackets.
QString SmilTimelineReader::cidFile(const QString& contentId) {
    QString id = contentId;
    if (id.startsWith(u'<') && id.endsWith(u'>'))
        id = id.mid(1, id.size() - 2);
    if (m_namesWithoutExtension.isEmpty()) {
        // Read once: a presentation may name many parts.
        const QDir folder(m_folder);
        for (const QFileInfo& entry :
             folder.entryInfoList(QDir::Files, QDir::Name | QDir::Reversed))
            m_namesWithoutExtension.insert(entry.completeBaseName(), entry.fileName());
    }
    if (QFileInfo::exists(m_folder + id))
        return id;
    return m_namesWithoutExtension.value(id, id);
}

// The real length, as the sound tools measure it; the probe knows videos and
// compressed sounds, the media commands MIDI.
qint64 SmilTimelineReader::lengthOf(const QString& file, SmilTimeline::Kind kind) {
    if (m_lengths.contains(file))
        return m_lengths.value(file);
    FfmpegDecoder::MediaInfo info;
    QString error;
    qint64 length = FfmpegDecoder::probe(file, info, error) ? info.lengthMs : -1;
    if (length < 0 && kind == SmilTimeline::Kind::Audio)
        length = modPlaySound::GetSoundInfo(file).section(u';', 1, 1).toLongLong();
    if (length <= 0) {
        length = -1;
        problem("STR_SMIL_NO_LENGTH", "The length of %0 cannot be measured.",
                {QFileInfo(file).fileName()});
    }
    m_lengths.insert(file, length);
    return length;
}

QString SmilTimelineReader::textOf(const QString& file) {
    QFile text;
    if (!PlainFileName::open(m_folder, QFileInfo(file).fileName(), text))
        return QString();
    QString content = TextDecoder::decode(text.read(kMaxTextBytes));
    // Text files end with one line break that is not part of the text.
    if (content.endsWith(QLatin1String("\r\n")))
        content.chop(2);
    else if (content.endsWith(u'\n'))
        content.chop(1);
    return content;
}

void SmilTimelineReader::problem(const QString& key, const QString& fallback,
                                 const QStringList& parameters) {
    m_timeline.addProblem(AppGlobals::text(key, fallback, parameters));
}
