#include "PhoneFormat.h"

#include "AppGlobals.h"
#include "clsMMSManager.h"

namespace {
// The phone-suite model code: a device calling itself by it and more is it.
const QString kSuiteModel = QStringLiteral("ZENTOR");
} // namespace

bool PhoneFormat::wantsPackage(const QString& device, const QString& packageDevices) {
    QString name = device.toUpper();
    if (name.startsWith(kSuiteModel) && name.size() > kSuiteModel.size())
        name = kSuiteModel;
    return !name.isEmpty() && packageDevices.toUpper().contains(name);
}

bool PhoneFormat::wantsPackage(const QString& device) {
    return wantsPackage(device,
                        AppGlobals::setting("preferences", "SisDownloadDeviceId", "Zentor"));
}

QString PhoneFormat::make(clsMMSManager& manager, clsMessage& message, bool package,
                          const QString& folder) {
    const int kind = package ? clsMMSManager::ExportPackage : clsMMSManager::ExportTemplate;
    if (manager.ExportMMS(message, kind, 0, folder + "mms.smil", true) != clsMMSManager::ExportOk)
        return QString();
    return folder + (package ? QStringLiteral("mms.SIS") : QStringLiteral("mms.tpl"));
}
