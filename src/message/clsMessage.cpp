#include "clsMessage.h"

#include "AppPaths.h"
#include "DomAttributes.h"
#include "PlainFileName.h"
#include "TextDecoder.h"

#include <QDir>
#include <QFile>

namespace {
using A = DomAttributes;

const char* const kSkeleton = "<ROOT>\r\n"
                              "<HEADER>\r\n"
                              "<CONTENT version=\"2.0\" type=\"Vellumo messages\" />\r\n"
                              "</HEADER>\r\n"
                              "<MMS>\r\n"
                              "<FILELIST>\r\n"
                              "</FILELIST>\r\n"
                              "</MMS>\r\n"
                              "</ROOT>";
} // namespace

clsMessage::clsMessage() = default;

void clsMessage::Initialize(const QString& xmlPath, const QString& name,
                            const QString& workFolder) {
    m_path = workFolder;
    const bool loaded = !xmlPath.isEmpty() && loadFile(xmlPath);
    m_loaded = loaded;
    if (loaded)
        A::cleanTree(m_document);
    else
        startSkeleton();
    attachDocument(name);
    m_changed = true;
}

// Other programs save the message in UTF-16 or a code page of their own; it is
// read in the encoding it has and kept as UTF-8, saying so in its declaration.
bool clsMessage::loadFile(const QString& xmlPath) {
    QFile file(AppPaths::toDisk(xmlPath));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray xml = TextDecoder::xmlAsUtf8(file.readAll());
    if (!m_document.load_buffer(xml.constData(), size_t(xml.size()),
                                pugi::parse_default | pugi::parse_declaration,
                                pugi::encoding_utf8) ||
        !m_document.child("ROOT"))
        return false;
    const pugi::xml_node declaration = m_document.first_child();
    if (declaration.type() == pugi::node_declaration && declaration.attribute("encoding"))
        declaration.attribute("encoding").set_value("utf-8");
    return true;
}

bool clsMessage::ReplaceDocument(const QByteArray& xml) {
    // DocumentXml leaves line ends in element text as they are, so they are read
    // as they are; and a text alone in its element (the file list) may be blanks.
    constexpr unsigned kOptions = (pugi::parse_default & ~pugi::parse_eol) |
                                  pugi::parse_declaration | pugi::parse_ws_pcdata_single;
    pugi::xml_document parsed;
    if (!parsed.load_buffer(xml.constData(), size_t(xml.size()), kOptions, pugi::encoding_utf8) ||
        !parsed.child("ROOT"))
        return false;
    m_document.reset(parsed);
    attachDocument(QString());
    m_changed = true;
    return true;
}

QByteArray clsMessage::DocumentXml() const {
    return A::bytes(m_document, "", pugi::format_raw | pugi::format_no_declaration);
}

void clsMessage::attachDocument(const QString& name) {
    m_root = m_document.child("ROOT");
    m_message = m_root.child("MESSAGE");
    if (!m_message) {
        m_message = m_root.append_child("MESSAGE");
        A::set(m_message, "name", name);
        m_slides.Initialize(m_message.append_child("SLIDES"));
    } else {
        m_slides.Initialize(A::child(m_message, "SLIDES"));
        m_slides.LoadXmlNodes();
    }
}

void clsMessage::startSkeleton() {
    DomAttributes::startDocument(m_document, kSkeleton);
}

QString clsMessage::version() const {
    return A::text(m_root.child("HEADER").child("CONTENT"), "version");
}

QString clsMessage::MMSFileList() const {
    return QString::fromUtf8(m_root.child("MMS").child("FILELIST").text().get());
}

void clsMessage::setMMSFileList(const QString& list) {
    A::setText(A::child(A::child(m_root, "MMS"), "FILELIST"), list);
}

QString clsMessage::name() const {
    return A::text(m_message, "name");
}
void clsMessage::setName(const QString& name) {
    A::set(m_message, "name", name);
}
QString clsMessage::sendImageFormat() const {
    return A::text(m_message, "sendformat");
}
int clsMessage::sendJpgQuality() const {
    return A::text(m_message, "sendquality").toInt();
}
void clsMessage::setSendPictureEncoding(const QString& extension, int jpgQuality) {
    A::set(m_message, "sendformat", extension);
    A::set(m_message, "sendquality", QString::number(jpgQuality));
}
QString clsMessage::Created() const {
    return A::text(m_message, "created");
}
void clsMessage::setCreated(const QString& stamp) {
    A::set(m_message, "created", stamp);
}

QStringList clsMessage::MediaNames() const {
    QStringList names;
    for (const auto& slide : m_slides) {
        const clsDrawObjects& objects = slide->DrawObjects();
        names << slide->Sound() << objects.BackPicture();
        for (const auto& object : objects)
            if (object->typ() == QLatin1String("image"))
                names << object->image();
    }
    names.removeAll(QString());
    names.removeDuplicates();
    return names;
}

void clsMessage::DeletePicture(int index) {
    clsSlide& slide = m_slides.Item(index);
    clsDrawObjects& objects = slide.DrawObjects();
    objects.setBackPicture(QString());
    objects.setBackType(clsDrawObjects::BackColorOnly);
    objects.setBackGround(QImage());
    objects.Clear();
    slide.setImage(QImage());
    m_changed = true;
}

void clsMessage::DeleteText(int index) {
    m_slides.Item(index).setText(QString());
    m_changed = true;
}

void clsMessage::DeleteSound(int index) {
    clsSlide& slide = m_slides.Item(index);
    slide.setSound(QString());
    slide.setSoundName(QString());
    slide.setSoundDuration(0);
    m_changed = true;
}

void clsMessage::DeleteSlide(int index) {
    m_slides.Item(index).DrawObjects().Clear();
    m_slides.Remove(index);
    m_changed = true;
}

void clsMessage::CopySlide(const clsSlide& source, clsSlide& target) {
    target.setColor(source.Color());
    target.setDuration(source.Duration());
    target.setSoundDuration(source.SoundDuration());
    target.setImage(source.image());
    target.setSound(copyMedia("A", source.Sound()));
    target.setSoundName(source.SoundName());
    target.setText(source.GetTextAttribute("text"));
    const clsDrawObjects& from = source.DrawObjects();
    clsDrawObjects& to = target.DrawObjects();
    to.setBackColor(from.BackColor());
    to.setBackType(from.BackType());
    to.setBackDuration(from.BackDuration());
    to.setBackPicture(copyMedia("B", from.BackPicture()));
    to.setBackGround(from.BackGround());
    for (const auto& object : from) {
        DrawObjectProperties properties = object->GetAllPproperties();
        if (properties.typ == QLatin1String("image"))
            properties.image = copyMedia("I", properties.image);
        to.Add().SetAllPproperties(properties);
    }
    m_changed = true;
}

QString clsMessage::copyMedia(const QString& prefix, const QString& fileName) {
    if (fileName.isEmpty())
        return QString();
    const QString copy = m_namer.next(prefix, AppPaths::extensionOf(fileName));
    // A name that leads out of the folder copies nothing: the copy goes without it.
    return PlainFileName::copy(m_path, fileName, m_path + copy) ? copy : QString();
}

bool clsMessage::SaveXml(const QString& path) {
    m_lastError.clear();
    return A::save(m_document, AppPaths::toDisk(path), &m_lastError);
}

bool clsMessage::SaveMessage(const QString& path) {
    if (!SaveXml(path))
        return false;
    removeSlideFiles();
    bool written = true;
    for (const auto& slide : m_slides)
        written = writeSlideFile(*slide) && written;
    return written;
}

void clsMessage::removeSlideFiles() {
    QDir folder(AppPaths::toDisk(m_path));
    for (const QString& name : folder.entryList({"Slide_*.*"}, QDir::Files))
        folder.remove(name);
}

bool clsMessage::writeSlideFile(const clsSlide& slide) {
    const QString target = m_path + slide.SlideFileName();
    const clsDrawObjects& objects = slide.DrawObjects();
    if (objects.BackType() == clsDrawObjects::BackAnimated) {
        // An animated slide keeps its animation as the slide file.
        QString why;
        if (PlainFileName::copy(m_path, objects.BackPicture(), target, &why))
            return true;
        m_lastError = "cannot copy the animation to " + slide.SlideFileName() + ": " + why;
        return false;
    }
    if (m_renderer && m_renderer(slide, target))
        return true;
    m_lastError = "cannot render " + slide.SlideFileName();
    return false;
}
