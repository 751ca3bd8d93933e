#include "ObexName.h"

#include "AppPaths.h"

namespace {
// A cut never separates the two halves of a character outside the basic plane.
QString leftWhole(const QString& text, qsizetype units) {
    if (units <= 0)
        return QString();
    QString left = text.left(units);
    if (left.size() < text.size() && left.back().isHighSurrogate())
        left.chop(1);
    return left;
}
} // namespace

QByteArray ObexName::encode(const QString& name) {
    QByteArray bytes;
    bytes.reserve((name.size() + 1) * 2);
    for (const QChar c : name) {
        bytes.append(static_cast<char>(c.unicode() >> 8));
        bytes.append(static_cast<char>(c.unicode() & 0xff));
    }
    bytes.append(2, '\0');
    return bytes;
}

qsizetype ObexName::headerSize(const QString& name) {
    // Header id and a 16-bit length before the text.
    return 3 + (name.size() + 1) * 2;
}

QString ObexName::shortened(const QString& name, qsizetype maxUnits) {
    if (name.size() <= maxUnits)
        return name;
    const QString extension = AppPaths::extensionOf(name);
    const qsizetype stemUnits = maxUnits - extension.size();
    if (extension.size() == name.size() || stemUnits < 1)
        return leftWhole(name, maxUnits);
    QString stem = leftWhole(name, stemUnits);
    // "Holiday at .tpl" reads worse than "Holiday at.tpl".
    while (stem.size() > 1 && stem.back().isSpace())
        stem.chop(1);
    return stem.isEmpty() ? leftWhole(name, maxUnits) : stem + extension;
}
