#include "MmsImporter.h"

#include "AppGlobals.h"
#include "AppPaths.h"
#include "MmsPartFiles.h"
#include "MmsPartReader.h"
#include "MmsPresentation.h"

#include <QFile>

namespace {
// Far above what any relay carries; a larger file is not read into memory.
constexpr qint64 kMaxMessageBytes = 32 * 1024 * 1024;
constexpr qint64 kMegabyte = 1024 * 1024;
const QString kPresentationName = QStringLiteral("mms.smil");
} // namespace

bool MmsImporter::isBinaryMms(const QString& path) {
    QFile file(AppPaths::toDisk(path));
    return file.open(QIODevice::ReadOnly) && MmsPartReader::looksLikeMessage(file.read(2));
}

bool MmsImporter::read(const QString& path, const QString& folder) {
    m_notes.clear();
    m_error.clear();
    QFile file(AppPaths::toDisk(path));
    if (!file.open(QIODevice::ReadOnly))
        return refuse(file.errorString());
    if (file.size() > kMaxMessageBytes)
        return refuse(AppGlobals::text("STR_IMPORT_MMS_TOO_LARGE", "it is larger than %0 MB.",
                                       {QString::number(kMaxMessageBytes / kMegabyte)}));
    // Read to its size: asked for the largest size, the device would make room for it first.
    const QByteArray bytes = file.read(file.size());
    if (!MmsPartReader::looksLikeMessage(bytes))
        return refuse(
            AppGlobals::text("STR_IMPORT_MMS_NOT_MMS", "it is no MMS as one is sent or received."));
    MmsPartReader message;
    if (!message.read(bytes)) {
        if (message.parts().isEmpty())
            return refuse(message.error());
        m_notes << AppGlobals::text("STR_IMPORT_MMS_DAMAGED",
                                    "The message is damaged (%0); what comes before is imported.",
                                    {message.error()});
    }
    m_notes << message.problems();
    m_subject = message.subject();
    MmsPartFiles files;
    MmsPresentation presentation(message, files);
    QString why;
    m_presentation = AppPaths::withSlash(folder) + kPresentationName;
    if (!files.write(folder, message.parts(), {kPresentationName}, &why) ||
        !presentation.write(m_presentation, &why))
        return refuse(why);
    m_notes << presentation.notes();
    if (!presentation.showsAnything())
        return refuse(
            AppGlobals::text("STR_IMPORT_MMS_NOTHING", "it holds nothing a slide can show."));
    return true;
}

bool MmsImporter::refuse(const QString& why) {
    m_error = why;
    return false;
}
