#include "SmilImporter.h"

#include "AppPaths.h"
#include "PlainFileName.h"
#include "SmilDocument.h"
#include "TextDecoder.h"

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
    const QFileInfo info(path);
    if (path.isEmpty() || (!info.exists() && !info.isSymLink()))
        return true; // another tool's presentation has none
    QString why;
    if (PlainFileName::existingFile(info.path(), info.fileName(), &why).isEmpty())
        return fail("The texts index cannot be used: " + why);
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
// of the folder, or links, would let a template read any file of the user's.
QString SmilImporter::mediaPath(const QString& source) {
    QString why;
    const QString path = PlainFileName::existingFile(m_folder, ownFolderName(source), &why);
    if (path.isEmpty())
        fail("The presentation names a file it cannot use: " + why);
    return path;
}

// Templates carry their texts in the index only; other tools' sets have the files.
QString SmilImporter::textOf(const QString& source) {
    if (m_texts.contains(source))
        return m_texts.value(source);
    QFile file;
    QString why;
    if (!PlainFileName::open(m_folder, ownFolderName(source), file, &why)) {
        fail("The presentation names a text it cannot use: " + why);
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

// Other tools write a file of the presentation's own folder as "./name".
QString SmilImporter::ownFolderName(const QString& source) {
    return source.startsWith(QLatin1String("./")) ? source.mid(2) : source;
}

bool SmilImporter::fail(const QString& why) {
    if (m_error.isEmpty())
        m_error = why;
    return false;
}
