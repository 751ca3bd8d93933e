#include "clsMessage.h"

#include "AppPaths.h"
#include "DomAttributes.h"

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
    const bool loaded =
        !xmlPath.isEmpty() &&
        m_document.load_file(AppPaths::toDisk(xmlPath).toLocal8Bit().constData(),
                             pugi::parse_default | pugi::parse_declaration, pugi::encoding_utf8) &&
        m_document.child("ROOT");
    if (!loaded)
        startSkeleton();
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
    m_changed = true;
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
    A::child(A::child(m_root, "MMS"), "FILELIST").text() = list.toUtf8().constData();
}

QString clsMessage::name() const {
    return A::text(m_message, "name");
}
void clsMessage::setName(const QString& name) {
    A::set(m_message, "name", name);
}
QString clsMessage::Created() const {
    return A::text(m_message, "created");
}
void clsMessage::setCreated(const QString& stamp) {
    A::set(m_message, "created", stamp);
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
    QFile::copy(m_path + fileName, m_path + copy);
    return copy;
}

bool clsMessage::SaveMessage(const QString& path) {
    m_lastError.clear();
    if (!m_document.save_file(AppPaths::toDisk(path).toLocal8Bit().constData(), "  ",
                              pugi::format_default, pugi::encoding_utf8)) {
        m_lastError = "cannot write " + path;
        return false;
    }
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
        if (QFile::copy(m_path + objects.BackPicture(), target))
            return true;
        m_lastError = "cannot copy " + objects.BackPicture() + " to " + slide.SlideFileName();
        return false;
    }
    if (m_renderer && m_renderer(slide, target))
        return true;
    m_lastError = "cannot render " + slide.SlideFileName();
    return false;
}
