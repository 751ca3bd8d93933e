#include "TransferOptions.h"

#include "OsName.h"
#include "clsPropertiesXML.h"

namespace {
const QString kSection = QStringLiteral("PhoneTransfer");

// A time in milliseconds; a broken or non-positive value keeps the default.
int readTime(clsPropertiesXML& settings, const QString& key, int fallback) {
    bool ok = false;
    const int value = settings.GetProp(kSection, key, QString::number(fallback)).toInt(&ok);
    return ok && value > 0 ? value : fallback;
}
} // namespace

TransferOptions TransferOptions::fromSettings(clsPropertiesXML* settings) {
    TransferOptions options;
    if (!settings)
        return options;
    options.obexTarget = settings->GetProp(kSection, "ObexTarget", options.obexTarget);
    options.connectTimeoutMs = readTime(*settings, "ConnectTimeout", options.connectTimeoutMs);
    options.responseTimeoutMs = readTime(*settings, "ResponseTimeout", options.responseTimeoutMs);
    options.probeIntervalMs = readTime(*settings, "ProbeInterval", options.probeIntervalMs);
    options.suiteProgram = settings->GetProp(kSection, "SuiteProgram", options.suiteProgram);
    options.suiteTimeoutMs = readTime(*settings, "SuiteTimeout", options.suiteTimeoutMs);
    return options;
}

QString irDaFamily() {
    return operatingSystemName().section('_', 0, 0);
}

QString irDaDefaultCommand() {
    return QStringLiteral("bluetooth-sendto \"%f%\"");
}

QString irDaCommandline(clsPropertiesXML& settings) {
    const QString family = irDaFamily();
    if (family.isEmpty())
        return irDaDefaultCommand();
    return settings.GetProp("IrDaCommand", family, irDaDefaultCommand());
}
