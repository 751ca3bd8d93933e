#pragma once

#include "PkgDefinition.h"

#include <QString>

// Makes the .SIS for a .pkg: reads and checks the definition, reads the
// sources, writes the package through a temporary file beside the target so
// a failure never leaves a file under the package's name.
class PackageBuilder {
public:
    bool build(const QString& pkgPath, const QString& sisPath);

    // "T.pkg:3: expected a UID in parentheses", or without a line number for
    // failures that belong to no line.
    const QString& error() const { return m_error; }
    // What went into the package, a line per file, for -v.
    QStringList summary() const;

    // T.pkg -> T.SIS in the same folder.
    static QString defaultSisPath(const QString& pkgPath);

private:
    bool fail(const PkgError& error);

    QString m_pkgPath;
    PkgDefinition m_definition;
    qint64 m_packageSize = 0;
    QString m_error;
};
