#include "MmsInfoLines.h"

#include "AppGlobals.h"
#include "MediaFrame.h"
#include "SendForm.h"
#include "VbFormat.h"
#include "clsMessage.h"

#include <QFileInfo>

namespace {
const QString kRule = QString(72, u'-');
constexpr const char* kPresentation = "mms.smil";
} // namespace

MmsInfoLines::MmsInfoLines(const clsMessage& message, const SendForm& form) {
    for (const SendForm::Part& sent : form.parts())
        m_sizes.insert(sent.name, QFileInfo(sent.path).size());
    QHash<int, SmilExporter::SlideFiles> sent;
    for (const SmilExporter::SlideFiles& files : form.slides())
        sent.insert(files.slide, files);
    for (const auto& slide : message.Slides()) {
        m_lines << heading(slideLabel(*slide) + u' ' + QString::number(slide->index()));
        // A slide too short to be sent has no parts.
        const SmilExporter::SlideFiles files = sent.value(slide->index());
        addPart(files.picture);
        addPart(files.sound);
        addPart(files.text);
    }
    m_lines << heading(AppGlobals::text("STR_MMSINFO_SMILFILE", "SMIL presentation"));
    addPart(QString::fromLatin1(kPresentation));
}

void MmsInfoLines::addPart(const QString& name) {
    if (name.isEmpty())
        return;
    const qint64 bytes = m_sizes.value(name);
    m_total += bytes;
    m_lines << part(name, bytes);
}

QString MmsInfoLines::heading(const QString& text) {
    return text + QStringLiteral("  ") + kRule;
}

QString MmsInfoLines::part(const QString& name, qint64 bytes) {
    return u'\t' + name + u'\t' + VbFormat::format(double(bytes), QStringLiteral("######")) + u' ' +
           AppGlobals::text("STR_MMSINFO_BYTES", "bytes");
}

QString MmsInfoLines::slideLabel(const clsSlide& slide) {
    const clsDrawObjects& objects = slide.DrawObjects();
    if (objects.BackType() != clsDrawObjects::BackAnimated)
        return AppGlobals::text("STR_MMSINFO_SLIDE", "Slide");
    return MediaFrame::isVideo(objects.BackPicture())
               ? AppGlobals::text("STR_MMSINFO_VIDEO", "Video")
               : AppGlobals::text("STR_MMSINFO_ANIMATION", "Animation");
}

QString MmsInfoLines::kilobytes(qint64 bytes) {
    return VbFormat::format(double(bytes) / 1024.0, QStringLiteral("######.00"));
}
