#include "PackageBuilder.h"

#include "PkgParser.h"
#include "RegularFile.h"
#include "SisWriter.h"
#include "SourceLoader.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace {
// A package definition is a few lines; anything this large is not one.
constexpr qint64 maximumPkgSize = 16 * 1024 * 1024;
} // namespace

QString PackageBuilder::defaultSisPath(const QString& pkgPath) {
    const QFileInfo info(pkgPath);
    return info.dir().filePath(info.completeBaseName() + QStringLiteral(".SIS"));
}

bool PackageBuilder::fail(const PkgError& error) {
    m_error = error.line > 0
                  ? QStringLiteral("%1:%2: %3").arg(m_pkgPath).arg(error.line).arg(error.message)
                  : QStringLiteral("%1: %2").arg(m_pkgPath, error.message);
    return false;
}

bool PackageBuilder::build(const QString& pkgPath, const QString& sisPath) {
    m_pkgPath = pkgPath;
    m_error.clear();
    QFile in;
    QString why;
    if (!RegularFile::open(pkgPath, in, why))
        return fail({0, QStringLiteral("cannot open: %1").arg(why)});
    if (in.size() > maximumPkgSize)
        return fail({0, QStringLiteral("too large for a package definition")});
    PkgParser parser;
    if (!parser.parse(in.readAll()))
        return fail(parser.error());
    m_definition = parser.definition();

    SourceLoader sources(QFileInfo(pkgPath).absolutePath());
    if (!sources.load(m_definition))
        return fail(sources.error());
    SisWriter writer;
    QByteArray package;
    if (!writer.build(m_definition, package))
        return fail(writer.error());
    m_packageSize = package.size();

    QSaveFile out(sisPath);
    if (!out.open(QIODevice::WriteOnly) || out.write(package) != package.size() || !out.commit())
        return fail({0, QStringLiteral("cannot write %1: %2").arg(sisPath, out.errorString())});
    return true;
}

QStringList PackageBuilder::summary() const {
    QStringList lines{QStringLiteral("%1 (0x%2) %3.%4.%5, %6 bytes")
                          .arg(m_definition.names.join(QStringLiteral(", ")))
                          .arg(m_definition.uid, 8, 16, QLatin1Char('0'))
                          .arg(m_definition.version.major)
                          .arg(m_definition.version.minor)
                          .arg(m_definition.version.variant)
                          .arg(m_packageSize)};
    for (const PkgFile& file : m_definition.files) {
        qint64 size = 0;
        for (const QByteArray& content : file.contents)
            size += content.size();
        lines << QStringLiteral("  %1 <- %2 (%3 bytes)")
                     .arg(file.destination, file.sources.join(QStringLiteral(", ")))
                     .arg(size);
    }
    return lines;
}
