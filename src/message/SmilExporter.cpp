#include "SmilExporter.h"

#include "AmrConverter.h"
#include "AppError.h"
#include "AppGlobals.h"
#include "AppPaths.h"
#include "ImageWriter.h"
#include "SlideRenderer.h"
#include "SmilDocument.h"
#include "VbFormat.h"
#include "clsMessage.h"
#include "clsPropertiesXML.h"
#include "modPlaySound.h"

#include <QFile>

namespace {
ImageWriter::Settings encoderSettings() {
    clsPropertiesXML* settings = AppGlobals::settings();
    return settings ? ImageWriter::readSettings(*settings) : ImageWriter::Settings{};
}

// The program's own recordings are 8000 Hz 16-bit WAV; those are what AMR holds.
bool convertsToAmr(const QString& path) {
    if (AppGlobals::setting("preferences", "ConvertWavToAmr", "1") != QLatin1String("1"))
        return false;
    const QStringList info = modPlaySound::GetSoundInfo(path).split(QLatin1Char(';'));
    return info.value(0) == QLatin1String("WAV") && info.value(2) == QLatin1String("8000") &&
           info.value(3) == QLatin1String("16");
}

void setAttribute(pugi::xml_node node, const char* name, const QString& value) {
    node.append_attribute(name) = value.toUtf8().constData();
}
} // namespace

SmilExporter::SmilExporter(QString folder, QString baseName, bool templateFlavour,
                           int durationFormat)
    : m_folder(std::move(folder)), m_baseName(std::move(baseName)),
      m_numbered(!templateFlavour && m_baseName != QLatin1String("mms")),
      m_durationFormat(durationFormat) {
    clsPropertiesXML* settings = AppGlobals::settings();
    m_imageFormat = settings ? ImageWriter::formatFromSettings(*settings) : ImageWriter::Jpeg;
}

QString SmilExporter::presentationName() const {
    return m_numbered ? m_baseName + ".smil" : QStringLiteral("mms.smil");
}

QString SmilExporter::textsIndexName() const {
    return m_numbered ? m_baseName + "_texts.xml" : QStringLiteral("texts.xml");
}

bool SmilExporter::run(clsMessage& message, const Progress& progress) {
    SmilDocument::startPresentation(m_smil, message.name());
    SmilDocument::startTextsIndex(m_texts, message.name());
    pugi::xml_node body = m_smil.child("smil").child("body");
    const int count = message.Slides().Count();
    for (const auto& slide : message.Slides()) {
        progress(slide->index(), count);
        if (slide->Duration() < 1)
            continue;
        pugi::xml_node par = body.append_child("par");
        setAttribute(par, "dur", SmilDocument::formatDuration(slide->Duration(), m_durationFormat));
        if (!exportSlide(*slide, message.Path(), par))
            return false;
    }
    progress(count, count);
    if (!SmilDocument::save(m_texts, m_folder + textsIndexName()) ||
        !SmilDocument::save(m_smil, m_folder + presentationName()))
        return fail("STR_ERROR_EXPORT_WRITE",
                    "The file cannot be written:", m_folder + presentationName());
    m_files << textsIndexName() << presentationName();
    message.setMMSFileList(m_files.join(QLatin1Char(';')));
    m_status = QStringLiteral("OK");
    return true;
}

bool SmilExporter::exportSlide(const clsSlide& slide, const QString& workFolder,
                               pugi::xml_node par) {
    return exportPicture(slide, workFolder, par) && exportSound(slide, workFolder, par) &&
           exportText(slide, par);
}

bool SmilExporter::exportPicture(const clsSlide& slide, const QString& workFolder,
                                 pugi::xml_node par) {
    const clsDrawObjects& objects = slide.DrawObjects();
    QString name;
    if (objects.BackType() == clsDrawObjects::BackAnimated) {
        // An animation goes out as it is: converting it would stop it.
        name = fileName(slide.index(), AppPaths::extensionOf(objects.BackPicture()));
        QFile::remove(m_folder + name);
        if (!QFile::copy(workFolder + objects.BackPicture(), m_folder + name))
            return fail("STR_ERROR_PICT_CONV", "The picture cannot be converted.",
                        objects.BackPicture());
    } else {
        const bool drawn = objects.Count() > 0 || objects.BackType() == clsDrawObjects::BackStill;
        if (slide.image().isNull() && !drawn)
            return true; // a slide of colour alone has no picture
        const QImage picture =
            slide.image().isNull()
                ? SlideRenderer(workFolder, SlideRenderer::surfaceFromSettings()).render(objects)
                : slide.image();
        name = fileName(slide.index(), ImageWriter::extension(m_imageFormat));
        try {
            ImageWriter::write(picture, m_imageFormat, m_folder + name, encoderSettings());
        } catch (const AppError& error) {
            return fail("STR_ERROR_PICT_CONV", "The picture cannot be converted.",
                        error.description());
        }
    }
    pugi::xml_node img = par.append_child("img");
    setAttribute(img, "src", name);
    setAttribute(img, "region", "Image");
    m_files << name;
    return true;
}

bool SmilExporter::exportSound(const clsSlide& slide, const QString& workFolder,
                               pugi::xml_node par) {
    if (slide.Sound().isEmpty())
        return true;
    const QString source = workFolder + slide.Sound();
    const bool convert = convertsToAmr(source);
    const QString name =
        fileName(slide.index(), convert ? ".amr" : AppPaths::extensionOf(slide.Sound()));
    QFile::remove(m_folder + name);
    if (convert) {
        const int result = AmrConverter::wav2amr(source, m_folder + name);
        if (result != AmrConverter::Ok)
            return fail("STR_ERROR_AUDIO_CONV", "The sound cannot be converted.",
                        AmrConverter::errorText(result));
    } else if (!QFile::copy(source, m_folder + name)) {
        return fail("STR_ERROR_AUDIO_CONV", "The sound cannot be converted.", slide.Sound());
    }
    setAttribute(par.append_child("audio"), "src", name);
    m_files << name;
    return true;
}

bool SmilExporter::exportText(const clsSlide& slide, pugi::xml_node par) {
    const QString text = slide.Text();
    if (text.isEmpty())
        return true;
    QString name = m_numbered ? fileName(slide.index(), ".txt")
                              : slide.name() + QString::number(slide.index()) + ".txt";
    name.replace(QLatin1Char(' '), QLatin1Char('_'));
    QFile file(m_folder + name);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
        file.write((text + "\r\n").toUtf8()) < 0)
        return fail("STR_ERROR_EXPORT_WRITE", "The file cannot be written:", m_folder + name);
    pugi::xml_node entry = m_texts.child("mms-text-files").child("message").append_child("file");
    setAttribute(entry, "filename", name);
    entry.text() = text.toUtf8().constData();
    pugi::xml_node textNode = par.append_child("text");
    setAttribute(textNode, "src", name);
    setAttribute(textNode, "region", "Text");
    m_files << name;
    return true;
}

QString SmilExporter::fileName(int slide, const QString& extension) {
    if (m_numbered)
        return m_baseName + "_" + VbFormat::format(++m_counter, "000", ".") + extension;
    return "Slide" + QString::number(slide) + extension;
}

bool SmilExporter::fail(const QString& key, const QString& fallback, const QString& reason) {
    m_status = AppGlobals::text(key, fallback) + " " + reason;
    return false;
}
