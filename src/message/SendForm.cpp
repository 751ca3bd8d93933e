#include "SendForm.h"

#include "AppGlobals.h"
#include "clsMMSManager.h"

#include <QFileInfo>

namespace {
constexpr const char* kBaseName = "mms";

int durationFormat() {
    return AppGlobals::setting("preferences", "MMSTimeFormat", "ms") == QLatin1String("s") ? 1 : 0;
}
} // namespace

bool SendForm::write(clsMMSManager& manager, clsMessage& message, const QString& folder) {
    const QString base = folder.endsWith('/') ? folder : folder + '/';
    m_parts.clear();
    m_slides.clear();
    m_packed = base + kBaseName + ".wap";
    if (manager.ExportMMS(message, clsMMSManager::ExportSmil, durationFormat(),
                          base + kBaseName + ".smil", true) != clsMMSManager::ExportOk) {
        m_error = manager.GetExportImportStatus();
        return false;
    }
    if (!manager.SaveAsMMS(base, kBaseName, message.MMSFileList(), message.name())) {
        m_error = manager.saveAsMmsStatus();
        return false;
    }
    for (const QString& name : MmsPacker::partNames(message.MMSFileList()))
        m_parts.append({name, base + name});
    m_slides = manager.exportedSlides();
    m_bytes = QFileInfo(m_packed).size();
    m_error.clear();
    return true;
}

void SendForm::assign(qint64 bytes, QList<Part> parts) {
    m_bytes = bytes;
    m_parts = std::move(parts);
    m_slides.clear();
    m_packed.clear();
    m_error.clear();
}
