// Opens arbitrary bytes as a received message file: they are written to a file
// and unpacked into a work folder, and afterwards nothing may exist anywhere but
// plain files directly in that folder.
#include "TarEngine.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {
void require(bool condition) {
    if (!condition)
        std::abort();
}

QStringList everythingUnder(const QString& folder) {
    QStringList result;
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext())
        result.append(it.next());
    return result;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    QTemporaryDir root;
    require(root.isValid());
    const QString archive = root.filePath("message.mms");
    const QString work = root.filePath("work");
    QFile file(archive);
    require(file.open(QIODevice::WriteOnly));
    require(file.write(reinterpret_cast<const char*>(data), qint64(size)) == qint64(size));
    file.close();
    require(QDir().mkpath(work));

    // Small limits keep each input quick; the checks below hold for any limits.
    TarEngine engine(TarLimits{1 << 20, 4 << 20, 200});
    const bool isArchive = engine.isArchive(archive);
    QString output;
    const int result = engine.run("--use-directory=0 --display-dialog=0 -xvf \"" + archive +
                                      "\" -o  \"" + work + "\"",
                                  &output);
    require(!engine.isRunning());
    require(output.size() <= 511);
    require((result == TarEngine::Success) == engine.lastError().isEmpty());
    require(isArchive || result == TarEngine::NotAnArchive);

    for (const QString& path : everythingUnder(root.path())) {
        if (path == archive || path == work)
            continue;
        const QFileInfo info(path);
        require(info.path() == work && info.isFile() && !info.isSymLink());
    }
    return 0;
}
