#include "XmlEntities.h"

#include <QRegularExpression>

namespace {
// Entities that expand into entities could fill the memory with a few lines
// ("billion laughs"); past these limits references stay as they are written.
constexpr int kMaxDepth = 16;
constexpr qsizetype kMaxExpandedChars = 1 << 20;
constexpr qsizetype kMaxReferenceLength = 64;

const QHash<QString, QString>& predefined() {
    static const QHash<QString, QString> entities{
        {"lt", "<"}, {"gt", ">"}, {"amp", "&"}, {"apos", "'"}, {"quot", "\""}};
    return entities;
}

// "#65" or "#x41" as the character it stands for; "" when it is none.
QString characterReference(const QString& name) {
    if (!name.startsWith(u'#'))
        return QString();
    bool ok = false;
    const uint code = name.startsWith(QLatin1String("#x"), Qt::CaseInsensitive)
                          ? name.mid(2).toUInt(&ok, 16)
                          : name.mid(1).toUInt(&ok, 10);
    if (!ok || code == 0 || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF))
        return QString();
    const char32_t character = code;
    return QString::fromUcs4(&character, 1);
}
} // namespace

XmlEntities::XmlEntities(const pugi::xml_document& document) {
    // Only internal general entities: a name, then a quoted value. One that
    // names a SYSTEM or PUBLIC file, and parameter entities (%), do not match.
    static const QRegularExpression declaration(
        QStringLiteral(R"re(<!ENTITY\s+([^\s%]\S*)\s+(?:"([^"]*)"|'([^']*)')\s*>)re"));
    for (const pugi::xml_node& node : document.children()) {
        if (node.type() != pugi::node_doctype)
            continue;
        const QString subset = QString::fromUtf8(node.value());
        for (const QRegularExpressionMatch& match : declaration.globalMatch(subset)) {
            const QString name = match.captured(1);
            if (!m_declared.contains(name)) // the first declaration counts
                m_declared.insert(name, match.captured(2) + match.captured(3));
        }
    }
}

QString XmlEntities::resolve(const char* raw) const {
    qsizetype budget = kMaxExpandedChars;
    return expand(QString::fromUtf8(raw), 0, budget);
}

QString XmlEntities::textOf(const pugi::xml_node& node) const {
    QString text;
    for (const pugi::xml_node& child : node.children()) {
        if (child.type() == pugi::node_pcdata)
            text += resolve(child.value());
        else if (child.type() == pugi::node_cdata)
            text += QString::fromUtf8(child.value());
        else if (child.type() == pugi::node_element)
            text += textOf(child);
    }
    return text;
}

QString XmlEntities::expand(const QString& raw, int depth, qsizetype& budget) const {
    QString out;
    qsizetype from = 0;
    for (qsizetype amp = raw.indexOf(u'&'); amp >= 0; amp = raw.indexOf(u'&', from)) {
        out += QStringView(raw).mid(from, amp - from);
        const qsizetype end = raw.indexOf(u';', amp + 1);
        const QString name =
            end > amp && end - amp <= kMaxReferenceLength ? raw.mid(amp + 1, end - amp - 1) : "";
        const std::optional<QString> value =
            name.isEmpty() ? std::nullopt : replacement(name, depth, budget);
        if (value) {
            out += *value;
            from = end + 1;
        } else {
            out += u'&';
            from = amp + 1;
        }
    }
    out += QStringView(raw).mid(from);
    return out;
}

// What the reference &name; stands for; nothing when it is kept as written.
std::optional<QString> XmlEntities::replacement(const QString& name, int depth,
                                                qsizetype& budget) const {
    if (budget <= 0)
        return std::nullopt;
    QString value = characterReference(name);
    if (value.isEmpty() && predefined().contains(name))
        value = predefined().value(name);
    else if (value.isEmpty() && m_declared.contains(name) && depth < kMaxDepth)
        value = expand(m_declared.value(name), depth + 1, budget);
    else if (value.isEmpty())
        return std::nullopt;
    // Every expansion is paid for, kept or not, so the work stays bounded too.
    budget -= value.size();
    if (budget < 0)
        return std::nullopt;
    return value;
}
