#include "SmilImporter.h"

#include "AppPaths.h"
#include "SmilDocument.h"
#include "TextDecoder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {
constexpr qint64 kMaxTextBytes = 64 * 1024;

QString attribute(const pugi::xml_node& node, const char* name) {
    return QString::fromUtf8(node.attribute(name).value()).trimmed();
}
} // namespace

bool SmilImporter::read(const QString& smilPath, const QString& textsIndexPath) {
    m_slides.clear();
    m_texts.clear();
    m_error.clear();
    m_folder = AppPaths::withSlash(QFileInfo(smilPath).absolutePath());
    pugi::xml_document smil;
    if (!smil.load_file(AppPaths::toDisk(smilPath).toLocal8Bit().constData()))
        return fail(smilPath + " is not a readable SMIL file.");
    const pugi::xml_node body = smil.child("smil").child("body");
    if (!body)
        return fail(smilPath + " has no smil/body.");
    if (!readTextsIndex(textsIndexPath))
        return false;
    // Other tools nest their pars in a seq; ours stand directly in the body.
    for (const pugi::xpath_node& par : body.select_nodes(".//par"))
        if (!readPar(par.node()))
            return false;
    return true;
}

bool SmilImporter::readTextsIndex(const QString& path) {
    if (path.isEmpty() || !QFileInfo::exists(path))
        return true; // another tool's presentation has none
    pugi::xml_document index;
    if (!index.load_file(AppPaths::toDisk(path).toLocal8Bit().constData()))
        return fail(path + " is not a readable texts index.");
    for (pugi::xml_node file : index.child("mms-text-files").child("message").children("file"))
        m_texts.insert(attribute(file, "filename"), QString::fromUtf8(file.text().get()));
    return true;
}

bool SmilImporter::readPar(const pugi::xml_node& par) {
    Slide slide;
    slide.duration = SmilDocument::parseDuration(attribute(par, "dur"));
    if (const pugi::xml_node img = par.child("img"))
        slide.picture = mediaPath(attribute(img, "src"));
    if (const pugi::xml_node audio = par.child("audio"))
        slide.sound = mediaPath(attribute(audio, "src"));
    if (const pugi::xml_node text = par.child("text")) {
        slide.text = textOf(attribute(text, "src"));
    }
    if (!m_error.isEmpty())
        return false;
    m_slides << slide;
    return true;
}

// A name from the presentation, as a file of its folder. Names that reach out
// of the folder would let a template read any file of the user's.
QString SmilImporter::mediaPath(const QString& source) {
    const QString cleaned = QDir::cleanPath(AppPaths::toDisk(source));
    if (cleaned.isEmpty() || QDir::isAbsolutePath(cleaned) || cleaned.startsWith("..")) {
        fail("The presentation names a file outside its folder: " + source);
        return QString();
    }
    const QString path = m_folder + cleaned;
    if (!QFileInfo(path).isFile()) {
        fail("The presentation names a missing file: " + source);
        return QString();
    }
    return path;
}

// Templates carry their texts in the index only; other tools' sets have the files.
QString SmilImporter::textOf(const QString& source) {
    if (m_texts.contains(source))
        return m_texts.value(source);
    const QString path = mediaPath(source);
    if (path.isEmpty())
        return QString();
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        fail("The text file cannot be read: " + source);
        return QString();
    }
    QString text = TextDecoder::utf8OrLatin1(file.read(kMaxTextBytes));
    // Text files end with one line break that is not part of the text.
    if (text.endsWith(QLatin1String("\r\n")))
        text.chop(2);
    else if (text.endsWith(QLatin1Char('\n')))
        text.chop(1);
    return text;
}

bool SmilImporter::fail(const QString& why) {
    if (m_error.isEmpty())
        m_error = why;
    return false;
}
