#include "SourceLoader.h"

#include "RegularFile.h"

#include <QDir>
#include <QFile>

namespace {
// Every offset in a package is 32 bits; refuse early rather than after
// reading gigabytes.
constexpr qint64 maximumTotal = 0xF0000000;

bool isDrivePath(const QString& path) {
    return path.size() >= 2 && path.at(1) == u':' && path.at(0).isLetter() &&
           path.at(0).unicode() < 0x80;
}
} // namespace

QString SourceLoader::localPath(const QString& source) const {
    QString path = source;
    path.replace(u'\\', u'/');
    if (isDrivePath(path))
        return {};
    return QDir::isAbsolutePath(path) ? QDir::cleanPath(path)
                                      : QDir::cleanPath(m_pkgFolder + u'/' + path);
}

bool SourceLoader::load(PkgDefinition& definition) {
    m_error = {};
    m_total = 0;
    for (PkgFile& file : definition.files) {
        file.contents.clear();
        if (file.type == SisFileType::Null)
            continue;
        for (const QString& source : file.sources) {
            QByteArray bytes;
            if (!loadSource(file, source, bytes))
                return false;
            file.contents << bytes;
        }
    }
    return true;
}

bool SourceLoader::loadSource(const PkgFile& file, const QString& source, QByteArray& bytes) {
    const QString path = localPath(source);
    auto fail = [&](const QString& reason) {
        m_error = {file.line, QStringLiteral("cannot read source \"%1\": %2").arg(source, reason)};
        return false;
    };
    if (path.isEmpty())
        return fail(QStringLiteral("a drive letter path of another system"));
    QFile in;
    QString why;
    if (!RegularFile::open(path, in, why))
        return fail(why);
    const qint64 size = in.size();
    m_total += size;
    if (m_total > maximumTotal)
        return fail(QStringLiteral("the package would be larger than 4 GB"));
    // The size measured is the size stored, even should the file grow meanwhile.
    bytes = in.read(size);
    if (bytes.size() != size)
        return fail(in.error() != QFileDevice::NoError ? in.errorString()
                                                       : QStringLiteral("it became shorter"));
    return true;
}
