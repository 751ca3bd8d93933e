#include "MessageFitter.h"

#include "AmrConverter.h"
#include "AppGlobals.h"
#include "FfmpegDecoder.h"
#include "ImageWriter.h"
#include "PcmResampler.h"
#include "PrivateTempDir.h"
#include "SendForm.h"
#include "SlideRenderer.h"
#include "WavFile.h"
#include "clsMMSManager.h"
#include "clsMessage.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>

namespace {
MediaFormat::Facts factsOf(const QString& path) {
    QFile file(path);
    return MediaFormat::identify(file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray());
}

QString sizeText(QSize size) {
    return QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
}

// The picture format the settings would send, when the class allows it;
// otherwise JPEG, which every class with pictures takes.
int pictureFormat(const ContentClass::Limits& limits) {
    static const QList<std::pair<int, MediaFormat::Kind>> kinds{
        {ImageWriter::Jpeg, MediaFormat::JpegBaseline},
        {ImageWriter::Gif, MediaFormat::Gif89a},
        {ImageWriter::Png, MediaFormat::Png},
        {ImageWriter::Wbmp, MediaFormat::Wbmp},
        {ImageWriter::Bmp, MediaFormat::Bmp}};
    clsPropertiesXML* settings = AppGlobals::settings();
    const int configured =
        settings ? ImageWriter::formatFromSettings(*settings) : ImageWriter::Jpeg;
    for (const auto& [format, kind] : kinds)
        if (format == configured && limits.formats.contains(kind))
            return format;
    return ImageWriter::Jpeg;
}

// Animations are sent as they are; only slide pictures are encoded anew.
bool hasStillPicture(const clsMessage& message) {
    return std::any_of(message.Slides().begin(), message.Slides().end(), [](const auto& slide) {
        return slide->DrawObjects().BackType() != clsDrawObjects::BackAnimated &&
               SlideRenderer::hasPicture(*slide);
    });
}
} // namespace

MessageFitter::MessageFitter(clsMMSManager& manager) : m_manager(manager) {}

MessageFitter::Result MessageFitter::fit(clsMessage& message, ContentClass::Id id) {
    const ContentClass::Limits& limits = ContentClass::limits(id);
    Result result;
    for (const auto& slide : message.Slides()) {
        fitPicture(*slide, limits, result);
        fitSound(*slide, limits, result);
    }
    if (ContentClass::fullyKnown(id) && hasStillPicture(message))
        chooseEncoding(message, limits, result);
    const auto report = ContentClassChecker::checkMessage(m_manager, message, id, &result.error);
    if (report)
        result.report = *report;
    return result;
}

void MessageFitter::fitPicture(clsSlide& slide, const ContentClass::Limits& limits,
                               Result& result) {
    // An animation is sent as it is; it is checked, not re-encoded.
    if (slide.DrawObjects().BackType() == clsDrawObjects::BackAnimated ||
        !SlideRenderer::hasPicture(slide) || !limits.maxPicture.isValid())
        return;
    const QImage picture =
        SlideRenderer(m_manager.GetWorkFolderPath(), SlideRenderer::surfaceFromSettings())
            .picture(slide);
    const QSize box = limits.maxPicture;
    if (picture.width() <= box.width() && picture.height() <= box.height())
        return;
    const QImage scaled = picture.scaled(box, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    slide.setImage(scaled);
    result.changes << AppGlobals::text(
        "STR_FIT_SCALED", "Slide %0: the picture was scaled from %1 to %2.",
        {QString::number(slide.index()), sizeText(picture.size()), sizeText(scaled.size())});
}

void MessageFitter::fitSound(clsSlide& slide, const ContentClass::Limits& limits, Result& result) {
    if (slide.Sound().isEmpty())
        return;
    const MediaFormat::Kind kind = factsOf(m_manager.GetWorkFolderPath() + slide.Sound()).kind;
    if (limits.formats.contains(kind) || (kind != MediaFormat::Wav && kind != MediaFormat::Mp3) ||
        !limits.formats.contains(MediaFormat::AmrNb))
        return;
    const QString old = slide.Sound();
    QString why;
    if (!convertToAmr(slide, why)) {
        result.changes << AppGlobals::text("STR_FIT_SOUND_FAILED",
                                           "Slide %0: the sound %1 could not be converted: %2",
                                           {QString::number(slide.index()), old, why});
        return;
    }
    result.changes << AppGlobals::text("STR_FIT_SOUND",
                                       "Slide %0: the sound %1 became %2 (AMR-NB).",
                                       {QString::number(slide.index()), old, slide.Sound()});
}

bool MessageFitter::convertToAmr(clsSlide& slide, QString& why) {
    const QString folder = m_manager.GetWorkFolderPath();
    const QString name = m_manager.GetUniqueFileName("A", "sound.amr");
    qint64 length = 0;
    if (!soundToAmr(folder + slide.Sound(), folder + name, length, why))
        return false;
    m_manager.DeleteWorkFolderFile(slide.Sound());
    slide.setSound(name);
    slide.setSoundDuration(length);
    return true;
}

bool MessageFitter::soundToAmr(const QString& source, const QString& target, qint64& lengthMs,
                               QString& why) {
    PcmSound decoded;
    PcmSound narrow;
    const PrivateTempDir temp;
    const QString wav = temp.path() + "/narrow.wav";
    if (!FfmpegDecoder::decodeAudio(source, decoded, why) ||
        !PcmResampler::toMono(decoded, AmrConverter::kSampleRate, narrow, why))
        return false;
    if (!temp.isValid() || !WavFile::write(wav, narrow)) {
        why = QStringLiteral("no temporary file can be written");
        return false;
    }
    const int result = AmrConverter::wav2amr(wav, target);
    if (result != AmrConverter::Ok) {
        why = AmrConverter::errorText(result, target);
        return false;
    }
    lengthMs = narrow.lengthMs();
    return true;
}

// JPEG sizes grow with the quality, so the highest quality that fits is
// found by halving the range; the other formats have no quality to choose.
void MessageFitter::chooseEncoding(clsMessage& message, const ContentClass::Limits& limits,
                                   Result& result) {
    const int format = pictureFormat(limits);
    const QString extension = ImageWriter::extension(format).mid(1);
    if (format != ImageWriter::Jpeg) {
        message.setSendPictureEncoding(extension, 0);
        return;
    }
    int low = kLowestQuality;
    int high = kHighestQuality;
    QString why;
    while (low < high) {
        const int middle = (low + high + 1) / 2;
        message.setSendPictureEncoding(extension, middle);
        const qint64 size = sendSize(message, why);
        if (size >= 0 && size <= limits.maxBytes)
            low = middle;
        else
            high = middle - 1;
    }
    message.setSendPictureEncoding(extension, low);
    result.changes << AppGlobals::text(
        "STR_FIT_QUALITY", "Pictures are sent as JPEG at quality %0.", {QString::number(low)});
}

qint64 MessageFitter::sendSize(clsMessage& message, QString& why) {
    const PrivateTempDir folder;
    SendForm form;
    if (!folder.isValid() || !form.write(m_manager, message, folder.path())) {
        why = form.error();
        return -1;
    }
    return form.bytes();
}
