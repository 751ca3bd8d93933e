#include "MmsPresentation.h"

#include "AppGlobals.h"
#include "DomAttributes.h"
#include "MediaFormat.h"
#include "SmilDocument.h"
#include "TextDecoder.h"

#include <vector>

namespace {
using Kind = MmsPartFiles::Kind;

// The SMIL as UTF-8: by the charset its part names, else as XML tells.
QByteArray smilText(const MmsPartReader::Part& part) {
    if (part.type.charset.isEmpty())
        return TextDecoder::xmlAsUtf8(part.data);
    return TextDecoder::decode(part.data, part.type.charset).toUtf8();
}

const char* elementFor(Kind kind) {
    return kind == Kind::Picture ? "img" : kind == Kind::Sound ? "audio" : "text";
}
} // namespace

bool MmsPresentation::write(const QString& path, QString* why) {
    m_used.clear();
    m_notes.clear();
    pugi::xml_document smil;
    const int start = startPart();
    if (start < 0 || !rewrite(smil, m_message.parts()[start])) {
        if (start >= 0)
            m_notes << AppGlobals::text("STR_IMPORT_MMS_SMIL_UNREADABLE",
                                        "The presentation of the message cannot be read; its "
                                        "slides were made from its parts.");
        build(smil);
    }
    noteUnused();
    return SmilDocument::save(smil, path, why);
}

// The part the multipart's start parameter names by Content-ID or
// Content-Location, when it is a SMIL; else the first SMIL.
int MmsPresentation::startPart() const {
    const QList<MmsPartReader::Part>& parts = m_message.parts();
    const QString start = MmsPartReader::bareContentId(m_message.contentType().start);
    int first = -1;
    for (int i = 0; i < parts.size(); ++i) {
        if (MmsPartFiles::kindOf(parts[i]) != Kind::Smil)
            continue;
        if (!start.isEmpty() && (parts[i].contentId == start || parts[i].name == start))
            return i;
        if (first < 0)
            first = i;
    }
    return first;
}

bool MmsPresentation::rewrite(pugi::xml_document& smil, const MmsPartReader::Part& part) {
    const QByteArray xml = smilText(part);
    if (!smil.load_buffer(xml.constData(), size_t(xml.size()), pugi::parse_default,
                          pugi::encoding_utf8) ||
        !smil.child("smil").child("body")) {
        smil.reset();
        return false;
    }
    std::vector<pugi::xml_node> absent;
    for (const pugi::xpath_node& found : smil.select_nodes("//*[@src]")) {
        const pugi::xml_node element = found.node();
        const QString source = DomAttributes::text(element, "src");
        const int index = m_files.find(source);
        if (index >= 0) {
            use(element, index);
            continue;
        }
        m_notes << AppGlobals::text(
            "STR_IMPORT_MMS_ABSENT",
            "The presentation names %0, which the message does not hold; it is left out.",
            {source});
        absent.push_back(element);
    }
    for (pugi::xml_node element : absent)
        element.parent().remove_child(element);
    return true;
}

void MmsPresentation::build(pugi::xml_document& smil) {
    SmilDocument::startPresentation(smil, m_message.subject());
    const pugi::xml_node body = smil.child("smil").child("body");
    QList<QList<int>> slides;
    QList<int> beforeFirstPicture;
    for (int i = 0; i < m_message.parts().size(); ++i) {
        const Kind kind = MmsPartFiles::kindOf(m_message.parts()[i]);
        if (m_files.fileName(i).isEmpty() || kind == Kind::Other || kind == Kind::Smil)
            continue;
        if (kind == Kind::Picture)
            slides.append(QList<int>{i} + std::exchange(beforeFirstPicture, {}));
        else if (slides.isEmpty())
            beforeFirstPicture.append(i);
        else
            slides.last().append(i);
    }
    if (!beforeFirstPicture.isEmpty())
        slides.append(beforeFirstPicture);
    for (const QList<int>& slide : slides)
        addSlide(body, slide);
}

void MmsPresentation::addSlide(pugi::xml_node body, const QList<int>& parts) {
    qint64 duration = AppGlobals::setting("preferences", "SlideDuration", "3000").toLongLong();
    bool timedBySound = false;
    pugi::xml_node par = body.append_child("par");
    for (const int index : parts) {
        const MmsPartReader::Part& part = m_message.parts()[index];
        const Kind kind = MmsPartFiles::kindOf(part);
        // The import keeps one sound a slide, the first: it sets the time.
        if (kind == Kind::Sound && !std::exchange(timedBySound, true))
            duration = std::max(duration, MediaFormat::identify(part.data).durationMs);
        use(par.append_child(elementFor(kind)), index);
    }
    DomAttributes::set(par, "dur", SmilDocument::formatDuration(duration, 0));
}

// The element names the part's file; a decoded text says it is UTF-8 now,
// whatever the message said of it.
void MmsPresentation::use(pugi::xml_node element, int part) {
    DomAttributes::set(element, "src", m_files.fileName(part));
    if (m_files.isText(part))
        DomAttributes::set(element, "charset", QStringLiteral("utf-8"));
    m_used.insert(part);
}

void MmsPresentation::noteUnused() {
    for (int i = 0; i < m_message.parts().size(); ++i) {
        if (m_files.fileName(i).isEmpty() || m_used.contains(i))
            continue;
        const QString type = m_message.parts()[i].type.mediaType;
        m_notes << AppGlobals::text(
            "STR_IMPORT_MMS_UNUSED", "%0 (%1) is on no slide; it is left out.",
            {m_files.label(i), type.isEmpty() ? QStringLiteral("?") : type});
    }
}
