#pragma once

#include "PkgDefinition.h"

#include <QString>

// Reads the source files of a package definition into its file entries.
class SourceLoader {
public:
    // Relative sources are found from pkgFolder.
    explicit SourceLoader(const QString& pkgFolder) : m_pkgFolder(pkgFolder) {}

    // False, with error() naming the file line, when a source cannot be read.
    bool load(PkgDefinition& definition);
    const PkgError& error() const { return m_error; }

    // The path on this machine for a source as written in a .pkg: '\' is a
    // folder separator, relative paths start at the .pkg's folder. Empty for
    // a path of another system ("C:\...").
    QString localPath(const QString& source) const;

private:
    bool loadSource(const PkgFile& file, const QString& source, QByteArray& bytes);

    QString m_pkgFolder;
    qint64 m_total = 0;
    PkgError m_error;
};
