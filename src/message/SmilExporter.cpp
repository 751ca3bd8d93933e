#include "SmilExporter.h"

#include "AmrConverter.h"
#include "AppError.h"
#include "AppGlobals.h"
#include "AppPaths.h"
#include "AtomicFile.h"
#include "DomAttributes.h"
#include "ImageWriter.h"
#include "PlainFileName.h"
#include "SlideRenderer.h"
#include "SmilDocument.h"
#include "SoundIntake.h"
#include "VbFormat.h"
#include "clsMessage.h"
#include "clsPropertiesXML.h"

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

void SmilExporter::usePictureEncoding(const clsMessage& message) {
    m_pictureSettings = ImageWriter::currentSettings();
    const int format = ImageWriter::formatIndex(message.sendImageFormat());
    if (format >= 0)
        m_imageFormat = format;
    if (message.sendJpgQuality() > 0)
        m_pictureSettings.jpgQuality = message.sendJpgQuality();
}

bool SmilExporter::run(clsMessage& message, const Progress& progress) {
    usePictureEncoding(message);
    SmilDocument::startPresentation(m_smil, message.name());
    SmilDocument::startTextsIndex(m_texts, message.name());
    pugi::xml_node body = m_smil.child("smil").child("body");
    const int count = message.Slides().Count();
    for (const auto& slide : message.Slides()) {
        progress(slide->index(), count);
        if (slide->Duration() < 1) {
            m_skipped << QString::number(slide->index());
            continue;
        }
        pugi::xml_node par = body.append_child("par");
        DomAttributes::set(par, "dur",
                           SmilDocument::formatDuration(slide->Duration(), m_durationFormat));
        if (!exportSlide(*slide, message.Path(), par))
            return false;
    }
    progress(count, count);
    QString why;
    if (!SmilDocument::save(m_texts, m_folder + textsIndexName(), &why) ||
        !SmilDocument::save(m_smil, m_folder + presentationName(), &why))
        return fail("STR_ERROR_EXPORT_WRITE", "The file cannot be written:", why);
    m_files << textsIndexName() << presentationName();
    message.setMMSFileList(m_files.join(QLatin1Char(';')));
    m_status = QStringLiteral("OK");
    return true;
}

bool SmilExporter::exportSlide(const clsSlide& slide, const QString& workFolder,
                               pugi::xml_node par) {
    m_slideFiles.append({slide.index(), {}, {}, {}});
    return exportPicture(slide, workFolder, par) && exportSound(slide, workFolder, par) &&
           exportText(slide, par);
}

bool SmilExporter::exportPicture(const clsSlide& slide, const QString& workFolder,
                                 pugi::xml_node par) {
    const clsDrawObjects& objects = slide.DrawObjects();
    QString name;
    if (objects.BackType() == clsDrawObjects::BackAnimated) {
        // An animation goes out as it is: converting it would stop it.
        QString why;
        name = fileName(slide.index(), AppPaths::extensionOf(objects.BackPicture()));
        if (!PlainFileName::copy(workFolder, objects.BackPicture(), m_folder + name, &why))
            return fail("STR_ERROR_PICT_CONV", "The picture cannot be converted.", why);
    } else {
        if (!SlideRenderer::hasPicture(slide))
            return true;
        const QImage picture =
            SlideRenderer(workFolder, SlideRenderer::surfaceFromSettings()).picture(slide);
        name = fileName(slide.index(), ImageWriter::extension(m_imageFormat));
        try {
            ImageWriter::write(picture, m_imageFormat, m_folder + name, m_pictureSettings);
        } catch (const AppError& error) {
            return fail("STR_ERROR_PICT_CONV", "The picture cannot be converted.",
                        error.description());
        }
    }
    pugi::xml_node img = par.append_child("img");
    DomAttributes::set(img, "src", name);
    DomAttributes::set(img, "region", "Image");
    m_files << name;
    m_slideFiles.last().picture = name;
    return true;
}

bool SmilExporter::exportSound(const clsSlide& slide, const QString& workFolder,
                               pugi::xml_node par) {
    if (slide.Sound().isEmpty())
        return true;
    QString why;
    const QString source = PlainFileName::existingFile(workFolder, slide.Sound(), &why);
    if (source.isEmpty())
        return fail("STR_ERROR_AUDIO_CONV", "The sound cannot be converted.", why);
    const bool convert = SoundIntake::convertsToAmr(source);
    const QString name =
        fileName(slide.index(), convert ? ".amr" : AppPaths::extensionOf(slide.Sound()));
    if (convert) {
        const int result = AmrConverter::wav2amr(source, m_folder + name);
        if (result != AmrConverter::Ok)
            return fail("STR_ERROR_AUDIO_CONV", "The sound cannot be converted.",
                        AmrConverter::errorText(result, m_folder + name));
    } else if (!PlainFileName::copy(workFolder, slide.Sound(), m_folder + name, &why)) {
        return fail("STR_ERROR_AUDIO_CONV", "The sound cannot be converted.", why);
    }
    DomAttributes::set(par.append_child("audio"), "src", name);
    m_files << name;
    m_slideFiles.last().sound = name;
    return true;
}

bool SmilExporter::exportText(const clsSlide& slide, pugi::xml_node par) {
    const QString text = slide.Text();
    if (text.isEmpty())
        return true;
    QString name = m_numbered ? fileName(slide.index(), ".txt")
                              : slide.name() + QString::number(slide.index()) + ".txt";
    name.replace(QLatin1Char(' '), QLatin1Char('_'));
    QString why;
    if (!AtomicFile::writeFile(m_folder + name, (text + "\r\n").toUtf8(), &why))
        return fail("STR_ERROR_EXPORT_WRITE", "The file cannot be written:", why);
    pugi::xml_node entry = m_texts.child("mms-text-files").child("message").append_child("file");
    DomAttributes::set(entry, "filename", name);
    DomAttributes::setText(entry, text);
    pugi::xml_node textNode = par.append_child("text");
    DomAttributes::set(textNode, "src", name);
    DomAttributes::set(textNode, "region", "Text");
    m_files << name;
    m_slideFiles.last().text = name;
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
