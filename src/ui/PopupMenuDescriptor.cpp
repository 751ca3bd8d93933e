#include "PopupMenuDescriptor.h"

#include <QStringList>

namespace {

// Numbers unnumbered items in the order they appear, across all sub-menus of one
// descriptor.
class DescriptorReader {
public:
    QList<PopupMenuItem> entries(const QString& descriptor);

private:
    PopupMenuItem entry(const QString& text);
    PopupMenuItem subMenu(const QString& text);
    PopupMenuItem item(const QString& text);
    int nextNumber() { return ++m_counter; }

    int m_counter = 0;
};

// A number that is not a decimal integer reads as 0, like a missing one: such an
// item can be shown but reports nothing when chosen.
int explicitNumber(const QString& text) {
    bool ok = false;
    const int number = text.trimmed().toInt(&ok, 10);
    return ok ? number : 0;
}

QString withoutFirstCharacter(const QString& caption) {
    return caption.mid(1);
}

QList<PopupMenuItem> DescriptorReader::entries(const QString& descriptor) {
    QList<PopupMenuItem> items;
    // An empty descriptor offers nothing, rather than one item without a caption.
    if (descriptor.isEmpty())
        return items;
    for (const QString& text : descriptor.split(u','))
        items.append(entry(text));
    return items;
}

PopupMenuItem DescriptorReader::entry(const QString& text) {
    return text.contains(u'|') ? subMenu(text) : item(text);
}

PopupMenuItem DescriptorReader::subMenu(const QString& text) {
    const QStringList pieces = text.split(u'|');
    const QString& header = pieces.first();
    PopupMenuItem menu;
    menu.subMenu = true;
    // The header's own number (conventionally ";0") is never reported.
    menu.caption = header.section(u';', 0, 0);
    if (header.contains(u'!')) {
        menu.enabled = false;
        menu.caption = withoutFirstCharacter(menu.caption);
    }
    for (qsizetype i = 1; i < pieces.size(); ++i)
        menu.children.append(item(pieces.at(i)));
    return menu;
}

PopupMenuItem DescriptorReader::item(const QString& text) {
    const QStringList fields = text.split(u';');
    PopupMenuItem result;
    result.number = fields.size() == 2 ? explicitNumber(fields.at(1)) : nextNumber();
    const QString& caption = fields.first();
    if (caption.trimmed() == u"-") {
        result.separator = true;
        return result;
    }
    if (text.contains(u'!')) {
        result.enabled = false;
        result.caption = withoutFirstCharacter(caption);
    } else if (text.contains(u'#')) {
        result.checked = true;
        result.caption = withoutFirstCharacter(caption);
    } else {
        result.caption = caption;
    }
    return result;
}

} // namespace

QList<PopupMenuItem> PopupMenuDescriptor::parse(const QString& descriptor) {
    return DescriptorReader().entries(descriptor);
}
