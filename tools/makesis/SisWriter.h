#pragma once

#include "PkgDefinition.h"

#include <QByteArray>

// Lays out an installation package (.SIS) for a package definition whose
// sources are loaded: the 100-byte header, language, file, requisite,
// component-name and capability records, then every string, then the file
// data. File and requisite records come in the reverse of .pkg order, and a
// file's source is recorded by its name alone.
class SisWriter {
public:
    // False, with error() set, when the package cannot be made (too large,
    // too many entries, compression failed).
    bool build(const PkgDefinition& definition, QByteArray& package);
    const PkgError& error() const { return m_error; }

    // The fourth UID: CRCs over the even and the odd bytes of the first three.
    static quint32 uid4(QByteArrayView firstTwelveBytes);

private:
    bool fail(int line, const QString& message);

    PkgError m_error;
};
