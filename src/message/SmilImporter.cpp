#include "SmilImporter.h"

#include "AppGlobals.h"
#include "AppPaths.h"
#include "PlainFileName.h"
#include "SmilDocument.h"
#include "TextDecoder.h"
#include "XmlEntities.h"

#include <QFile>
#include <QFileInfo>

namespace {
constexpr qint64 kMaxTextBytes = 64 * 1024;

QString attribute(const pugi::xml_node& node, const char* name) {
    return QString::fromUtf8(node.attribute(name).value()).trimmed();
}

// The element's name without a namespace prefix ("smil:par" is a par).
QString localName(const pugi::xml_node& node) {
    const QString name = QString::fromUtf8(node.name());
    return name.mid(name.indexOf(u':') + 1);
}

pugi::xml_node firstElement(const pugi::xml_node& parent) {
    return parent.find_child(
        [](const pugi::xml_node& n) { return n.type() == pugi::node_element; });
}

bool isAnyOf(const QString& value, const QStringList& values) {
    return values.contains(value, Qt::CaseInsensitive);
}
} // namespace

bool SmilImporter::read(const QString& smilPath, const QString& textsIndexPath) {
    m_slides.clear();
    m_texts.clear();
    m_notes.clear();
    m_error.clear();
    m_folder = AppPaths::withSlash(QFileInfo(smilPath).absolutePath());
    m_media.emplace(m_folder);
    pugi::xml_document smil;
    if (!load(smil, smilPath, pugi::parse_default))
        return fail(
            AppGlobals::text("STR_IMPORT_NOT_SMIL", "%0 is not a readable SMIL file.", {smilPath}));
    const pugi::xml_node body = smil.child("smil").child("body");
    if (!body)
        return fail(smilPath + " has no smil/body.");
    if (!readTextsIndex(textsIndexPath))
        return false;
    // The body plays its children one after the other, as a seq does.
    readSequence(body);
    if (!m_error.isEmpty()) {
        m_slides.clear();
        return false;
    }
    return true;
}

bool SmilImporter::readTextsIndex(const QString& path) {
    const QFileInfo info(path);
    if (path.isEmpty() || (!info.exists() && !info.isSymLink()))
        return true; // another tool's presentation has none
    QString why;
    if (PlainFileName::existingFile(info.path(), info.fileName(), &why).isEmpty())
        return fail("The texts index cannot be used: " + why);
    pugi::xml_document index;
    if (!load(index, path, XmlEntities::kParseOptions))
        return fail(path + " is not a readable texts index.");
    const XmlEntities entities(index);
    for (pugi::xml_node file : index.child("mms-text-files").child("message").children("file"))
        m_texts.insert(entities.resolve(file.attribute("filename").value()).trimmed(),
                       entities.textOf(file));
    return true;
}

// Parsed as UTF-8 whatever encoding the file was written in.
bool SmilImporter::load(pugi::xml_document& document, const QString& path, unsigned options) {
    QFile file(AppPaths::toDisk(path));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray xml = TextDecoder::xmlAsUtf8(file.readAll());
    return document.load_buffer(xml.constData(), size_t(xml.size()), options, pugi::encoding_utf8);
}

void SmilImporter::readSequence(const pugi::xml_node& container) {
    for (pugi::xml_node element = container.first_child(); element && m_error.isEmpty();
         element = element.next_sibling())
        if (element.type() == pugi::node_element)
            readItem(element);
}

void SmilImporter::readItem(const pugi::xml_node& element) {
    const QString name = localName(element);
    if (name == QLatin1String("par") || kindOf(element) != Kind::None)
        readSlide(element, element);
    else if (name == QLatin1String("seq"))
        readSequence(element);
    else if (name == QLatin1String("switch"))
        // A switch plays the first of its choices that a player can.
        if (const pugi::xml_node choice = firstElement(element))
            readItem(choice);
}

void SmilImporter::readSlide(const pugi::xml_node& timed, const pugi::xml_node& media) {
    Slide slide;
    slide.duration = SmilDocument::parseDuration(attribute(timed, "dur"));
    if (kindOf(media) != Kind::None)
        takeMedia(slide, media);
    else
        collectMedia(slide, media);
    checkDuration(timed, slide);
    m_slides << slide;
}

void SmilImporter::collectMedia(Slide& slide, const pugi::xml_node& container) {
    for (const pugi::xml_node& element : container.children()) {
        if (element.type() != pugi::node_element)
            continue;
        if (kindOf(element) != Kind::None)
            takeMedia(slide, element);
        else
            collectMedia(slide, element);
    }
}

void SmilImporter::takeMedia(Slide& slide, const pugi::xml_node& element) {
    const QString source = attribute(element, "src");
    if (source.isEmpty())
        return;
    const Kind kind = kindOf(element);
    QString& field = kind == Kind::Picture ? slide.picture
                     : kind == Kind::Sound ? slide.sound
                                           : slide.text;
    if (!field.isEmpty()) {
        m_notes << AppGlobals::text(
            "STR_IMPORT_MEDIA_LEFT_OUT",
            "Slide %0 has room for one picture, one sound and one text: %1 is left out.",
            {QString::number(m_slides.size() + 1), source});
        return;
    }
    field = kind == Kind::Text ? textOf(source, charsetOf(element)) : mediaPath(source);
}

// The rule for durations gives 0 for clock values ("00:00:03.5"),
// "indefinite" and a missing dur; such a slide is kept as read, but said.
void SmilImporter::checkDuration(const pugi::xml_node& timed, const Slide& slide) {
    if (slide.duration > 0)
        return;
    const QString number = QString::number(m_slides.size() + 1);
    const QString written = attribute(timed, "dur");
    m_notes << (written.isEmpty()
                    ? AppGlobals::text("STR_IMPORT_NO_DURATION",
                                       "Slide %0 names no duration and lasts 0 ms.", {number})
                    : AppGlobals::text("STR_IMPORT_ZERO_DURATION",
                                       "Slide %0: the duration \"%1\" reads as 0 ms.",
                                       {number, written}));
}

SmilImporter::Kind SmilImporter::kindOf(const pugi::xml_node& element) {
    const QString name = localName(element);
    if (isAnyOf(name, {"img", "video", "animation"}))
        return Kind::Picture;
    if (name == QLatin1String("audio"))
        return Kind::Sound;
    if (isAnyOf(name, {"text", "textstream"}))
        return Kind::Text;
    if (name != QLatin1String("ref"))
        return Kind::None;
    // A ref is whatever its media is: by its MIME type, else by its extension.
    const QString type = attribute(element, "type").section(u'/', 0, 0);
    const QString extension = AppPaths::extensionOf(attribute(element, "src")).mid(1);
    if (type == QLatin1String("audio") ||
        isAnyOf(extension, {"wav", "mp3", "amr", "awb", "mid", "midi", "rmi", "aac", "m4a", "ogg"}))
        return Kind::Sound;
    if (type == QLatin1String("text") || isAnyOf(extension, {"txt", "text"}))
        return Kind::Text;
    return Kind::Picture;
}

QString SmilImporter::mediaPath(const QString& source) {
    QString why;
    const QString path = m_media->resolve(source, &why);
    if (path.isEmpty())
        fail("The presentation names a file it cannot use: " + why);
    return path;
}

// Templates carry their texts in the index only; other tools' sets have the files.
QString SmilImporter::textOf(const QString& source, const QString& charset) {
    if (m_texts.contains(source))
        return m_texts.value(source);
    const QString path = mediaPath(source);
    QFile file;
    QString why;
    if (path.isEmpty())
        return QString();
    if (!PlainFileName::open(m_folder, QFileInfo(path).fileName(), file, &why)) {
        fail("The presentation names a text it cannot use: " + why);
        return QString();
    }
    QString text = TextDecoder::decode(file.read(kMaxTextBytes), charset);
    // Text files end with one line break that is not part of the text.
    if (text.endsWith(QLatin1String("\r\n")))
        text.chop(2);
    else if (text.endsWith(QLatin1Char('\n')))
        text.chop(1);
    return text;
}

// The charset a presentation names for a text file, on the element itself or
// in its MIME type; "" when it leaves it to the bytes.
QString SmilImporter::charsetOf(const pugi::xml_node& text) {
    const QString named = attribute(text, "charset");
    return named.isEmpty() ? TextDecoder::charsetOf(attribute(text, "type")) : named;
}

bool SmilImporter::fail(const QString& why) {
    if (m_error.isEmpty())
        m_error = why;
    return false;
}
