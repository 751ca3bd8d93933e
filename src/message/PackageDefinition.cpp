#include "PackageDefinition.h"

#include "AtomicFile.h"

namespace {
const QChar kQuote = QLatin1Char('"');
const QString kPhoneTemplates = QStringLiteral("!:\\documents\\MMS\\Templates\\");
} // namespace

QStringList PackageDefinition::lines(const QString& baseName, const QString& folder,
                                     const QStringList& files) {
    // The identifiers and the uneven spacing of the third line are what the
    // phone's installer has always been given.
    QStringList lines{"#{\"" + baseName + "\"},(0x10E7B29D),1,0,0,TYPE=SISUPGRADE",
                      "(0x10E7B29D),1,0,0,{\"CopyOnlyStub\"}",
                      "(0x10C4D6A3), 1, 0, 0, {\"CorvanePZentorxPlatformProductID\"}"};
    for (const QString& file : files) {
        if (file.isEmpty() || file.contains(QLatin1String(".txt")))
            continue;
        lines << kQuote + folder + file + kQuote + "-" + kQuote + kPhoneTemplates + baseName +
                     "\\" + file + kQuote;
    }
    return lines;
}

bool PackageDefinition::write(const QString& path, const QStringList& lines) {
    AtomicFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    for (const QString& line : lines)
        file.write((line + "\r\n").toUtf8());
    return file.commit();
}
