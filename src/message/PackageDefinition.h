#pragma once

#include <QString>
#include <QStringList>

// The package definition (".pkg") that the package builder turns into an
// installation package: the template's files installed into the phone's
// template folder under the package's base name.
class PackageDefinition {
public:
    // Every line, each to be ended with CR LF. folder ends with a separator;
    // names that are empty or contain ".txt" are not packaged.
    static QStringList lines(const QString& baseName, const QString& folder,
                             const QStringList& files);
    static bool write(const QString& path, const QStringList& lines);
};
