#include "OsName.h"

#include <QSysInfo>

QString operatingSystemName() {
    QString version = QSysInfo::kernelVersion();
    version.replace(QLatin1Char('.'), QLatin1Char('_'));
    const QString family = QSysInfo::kernelType() == QLatin1String("linux")
                               ? QStringLiteral("Linux")
                               : QSysInfo::kernelType();
    return family + "_" + version;
}
