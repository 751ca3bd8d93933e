#include "ContentClassChecker.h"

#include "AppGlobals.h"
#include "MmsPartReader.h"
#include "PrivateTempDir.h"

#include <QFile>
#include <algorithm>

namespace {
QByteArray readFile(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString sizeText(QSize size) {
    return QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
}

using Part = ContentClassChecker::Part;
using Limits = ContentClass::Limits;

// Each rule once, asked both when the rules are listed and when the smallest
// class is searched, which needs no texts.
bool isEmpty(const Part& part) {
    return part.facts.kind == MediaFormat::Empty;
}
bool misnamed(const Part& part) {
    return !isEmpty(part) && !MediaFormat::matchesName(part.facts.kind, part.name);
}
bool refusedFormat(const Part& part, const Limits& limits) {
    return !isEmpty(part) && !limits.formats.contains(part.facts.kind);
}
bool tooLarge(const Part& part, const Limits& limits) {
    const QSize picture = part.facts.resolution;
    return picture.isValid() && limits.maxPicture.isValid() &&
           (picture.width() > limits.maxPicture.width() ||
            picture.height() > limits.maxPicture.height());
}
bool fits(const Part& part, const Limits& limits) {
    return !isEmpty(part) && !misnamed(part) && !part.facts.truncated &&
           !refusedFormat(part, limits) && !tooLarge(part, limits);
}

// Damage and a lying name break every class: the receiver is told a type the
// part does not have, or gets less than the part says it holds.
void damageRules(const Part& part, QList<ContentClassChecker::Broken>& broken) {
    const QString kind = MediaFormat::kindName(part.facts.kind);
    if (isEmpty(part))
        broken.append(
            {part.name, AppGlobals::text("STR_CLASS_EMPTY_PART", "%0 is empty.", {part.name})});
    if (misnamed(part))
        broken.append({part.name, AppGlobals::text("STR_CLASS_MISNAMED",
                                                   "%0 holds %1, not what its name says.",
                                                   {part.name, kind})});
    if (part.facts.truncated)
        broken.append({part.name, AppGlobals::text("STR_CLASS_TRUNCATED",
                                                   "%0 is cut short: its %1 data ends early.",
                                                   {part.name, kind})});
}
} // namespace

ContentClassChecker::ContentClassChecker(const SendForm& form) : m_bytes(form.bytes()) {
    if (!form.packedPath().isEmpty() && readPacked(form.packedPath()))
        return;
    for (const SendForm::Part& sent : form.parts())
        addPart(sent.name, readFile(sent.path));
}

// The parts as they travel, read from the binary message in one go. A
// message this reader cannot follow is read from its part files instead.
bool ContentClassChecker::readPacked(const QString& path) {
    MmsPartReader reader;
    if (!reader.read(readFile(path)))
        return false;
    for (const MmsPartReader::Part& part : reader.parts())
        addPart(part.name, part.data);
    return true;
}

void ContentClassChecker::addPart(const QString& name, const QByteArray& bytes) {
    m_parts.append({name, bytes.size(), MediaFormat::identify(bytes)});
}

void ContentClassChecker::partRules(const Part& part, const ContentClass::Limits& limits,
                                    QList<Broken>& broken) const {
    damageRules(part, broken);
    const QString className = QString::fromLatin1(limits.name);
    if (refusedFormat(part, limits))
        broken.append(
            {part.name,
             AppGlobals::text("STR_CLASS_FORMAT", "%0 is %1, which %2 does not allow.",
                              {part.name, MediaFormat::kindName(part.facts.kind), className})});
    if (tooLarge(part, limits))
        broken.append({part.name, AppGlobals::text("STR_CLASS_RESOLUTION",
                                                   "%0 is %1 pixels; %2 allows at most %3.",
                                                   {part.name, sizeText(part.facts.resolution),
                                                    className, sizeText(limits.maxPicture)})});
}

QList<ContentClassChecker::Broken> ContentClassChecker::brokenRules(ContentClass::Id id) const {
    const ContentClass::Limits& limits = ContentClass::limits(id);
    const QString className = QString::fromLatin1(limits.name);
    QList<Broken> broken;
    if (!ContentClass::fullyKnown(id))
        broken.append({QString(), AppGlobals::text("STR_CLASS_UNKNOWN_LIMITS",
                                                   "The limits of %0 are not known, so the "
                                                   "message cannot be said to fit it.",
                                                   {className})});
    else if (m_bytes > limits.maxBytes)
        broken.append({QString(), AppGlobals::text("STR_CLASS_SIZE",
                                                   "The message is %0 bytes; %1 allows at most "
                                                   "%2 bytes.",
                                                   {QString::number(m_bytes), className,
                                                    QString::number(limits.maxBytes)})});
    for (const Part& part : m_parts)
        partRules(part, limits, broken);
    return broken;
}

std::optional<ContentClass::Id> ContentClassChecker::smallestClass() const {
    for (const ContentClass::Limits& limits : ContentClass::table())
        if (ContentClass::fullyKnown(limits.id) && m_bytes <= limits.maxBytes &&
            std::all_of(m_parts.begin(), m_parts.end(),
                        [&](const Part& part) { return fits(part, limits); }))
            return limits.id;
    return std::nullopt;
}

ContentClassChecker::Report ContentClassChecker::report(ContentClass::Id chosen) const {
    return {m_bytes, m_parts, smallestClass(), chosen, brokenRules(chosen)};
}

std::optional<ContentClassChecker::Report>
ContentClassChecker::checkMessage(clsMMSManager& manager, clsMessage& message,
                                  ContentClass::Id chosen, QString* error) {
    const PrivateTempDir folder;
    SendForm form;
    if (!folder.isValid() || !form.write(manager, message, folder.path())) {
        if (error)
            *error = folder.isValid() ? form.error() : folder.errorString();
        return std::nullopt;
    }
    return ContentClassChecker(form).report(chosen);
}

QList<ContentClassChecker::Broken>
ContentClassChecker::fileRules(const QString& path, const QString& name, ContentClass::Id id) {
    SendForm form;
    form.assign(0, {{name, path}});
    const ContentClassChecker checker(form);
    QList<Broken> broken;
    checker.partRules(checker.m_parts.front(), ContentClass::limits(id), broken);
    return broken;
}

ContentClass::Id ContentClassChecker::classFromSettings() {
    return ContentClass::fromName(AppGlobals::setting("preferences", "ContentClass", "Image Rich"))
        .value_or(ContentClass::ImageRich);
}
