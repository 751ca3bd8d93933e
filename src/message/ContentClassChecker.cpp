#include "ContentClassChecker.h"

#include "AppGlobals.h"
#include "PrivateTempDir.h"

#include <QFile>

namespace {
QString sizeText(QSize size) {
    return QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
}

bool larger(QSize picture, QSize limit) {
    return picture.width() > limit.width() || picture.height() > limit.height();
}

// Damage and a lying name break every class: the receiver is told a type the
// part does not have, or gets less than the part says it holds.
void damageRules(const ContentClassChecker::Part& part,
                 QList<ContentClassChecker::Broken>& broken) {
    const MediaFormat::Facts& facts = part.facts;
    const QString kind = MediaFormat::kindName(facts.kind);
    if (facts.kind == MediaFormat::Empty) {
        broken.append(
            {part.name, AppGlobals::text("STR_CLASS_EMPTY_PART", "%0 is empty.", {part.name})});
        return;
    }
    if (!MediaFormat::matchesName(facts.kind, part.name))
        broken.append({part.name, AppGlobals::text("STR_CLASS_MISNAMED",
                                                   "%0 holds %1, not what its name says.",
                                                   {part.name, kind})});
    if (facts.truncated)
        broken.append({part.name, AppGlobals::text("STR_CLASS_TRUNCATED",
                                                   "%0 is cut short: its %1 data ends early.",
                                                   {part.name, kind})});
}
} // namespace

ContentClassChecker::ContentClassChecker(const SendForm& form) : m_bytes(form.bytes()) {
    for (const SendForm::Part& sent : form.parts()) {
        QFile file(sent.path);
        const QByteArray bytes = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        m_parts.append({sent.name, bytes.size(), MediaFormat::identify(bytes)});
    }
}

void ContentClassChecker::partRules(const Part& part, const ContentClass::Limits& limits,
                                    QList<Broken>& broken) const {
    damageRules(part, broken);
    const MediaFormat::Facts& facts = part.facts;
    const QString className = QString::fromLatin1(limits.name);
    if (facts.kind != MediaFormat::Empty && !limits.formats.contains(facts.kind))
        broken.append({part.name, AppGlobals::text(
                                      "STR_CLASS_FORMAT", "%0 is %1, which %2 does not allow.",
                                      {part.name, MediaFormat::kindName(facts.kind), className})});
    if (facts.resolution.isValid() && limits.maxPicture.isValid() &&
        larger(facts.resolution, limits.maxPicture))
        broken.append({part.name, AppGlobals::text("STR_CLASS_RESOLUTION",
                                                   "%0 is %1 pixels; %2 allows at most %3.",
                                                   {part.name, sizeText(facts.resolution),
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
        if (ContentClass::fullyKnown(limits.id) && brokenRules(limits.id).isEmpty())
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
