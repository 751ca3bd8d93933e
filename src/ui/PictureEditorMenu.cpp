#include "PictureEditorMenu.h"

#include "AppGlobals.h"

#include <QStringList>

namespace {
constexpr int kLongestCaption = 40;
const QString kSeparator = QStringLiteral("-");
} // namespace

const QList<const char*>& PictureEditorMenu::keys() {
    static const QList<const char*> all = {
        "STR_CUT_TEXT",       "STR_COPY_TEXT",          "STR_PASTE_TEXT",        "STR_ADD_TEXT",
        "STR_PICTURE_FILE",   "STR_PICTURE_BACKGROUND", "STR_BACKGROUND_COLOR",  "STR_TEXT_NEW",
        "STR_DLG_LOAD_PIC",   "STR_DLG_LOAD_FILTER",    "STR_DUPLICATE",         "STR_DELETE",
        "STR_BRING_TO_FRONT", "STR_SEND_TO_BACK",       "STR_NO_FILE_FOUND",     "APP_PRODUCTNAME",
        "STR_SELECT_OBJECT",  "STR_ADD_ANIMATION",      "STR_ASK_DELETE_OBJECTS"};
    return all;
}

void PictureEditorMenu::TranslateControl() {
    m_captions.clear();
    for (const char* key : keys())
        m_captions.insert(QLatin1String(key), AppGlobals::text(key, QLatin1String(key)));
}

QString PictureEditorMenu::caption(const char* key) const {
    return m_captions.value(QLatin1String(key), QLatin1String(key));
}

QString PictureEditorMenu::item(const char* key, int command, bool enabled) const {
    return (enabled ? QString() : QStringLiteral("!")) + itemCaption(caption(key)) + u';' +
           QString::number(command);
}

QString PictureEditorMenu::descriptor(const State& state) const {
    const bool selected = state.hasSelection;
    QStringList items{item("STR_CUT_TEXT", Cut, selected),
                      item("STR_COPY_TEXT", Copy, selected),
                      item("STR_PASTE_TEXT", Paste, state.canPaste),
                      kSeparator,
                      item("STR_DUPLICATE", Duplicate, selected),
                      item("STR_DELETE", Delete, selected),
                      kSeparator,
                      item("STR_BRING_TO_FRONT", BringToFront, selected),
                      item("STR_SEND_TO_BACK", SendToBack, selected),
                      kSeparator,
                      item("STR_ADD_TEXT", AddText),
                      item("STR_PICTURE_FILE", PictureFile),
                      kSeparator,
                      item("STR_PICTURE_BACKGROUND", PictureBackground),
                      item("STR_BACKGROUND_COLOR", BackgroundColor)};
    if (!state.objects.isEmpty()) {
        QString choices = itemCaption(caption("STR_SELECT_OBJECT")) + QStringLiteral(";0");
        for (const Entry& entry : state.objects) {
            const int command = (entry.isText ? FirstText : FirstImage) + entry.number;
            choices += u'|' + (entry.selected ? QStringLiteral("#") : QString()) +
                       itemCaption(entry.caption).replace(u'&', QStringLiteral("&&")) + u';' +
                       QString::number(command);
        }
        items << kSeparator << choices;
    }
    return items.join(u',');
}

QString PictureEditorMenu::itemCaption(const QString& text) {
    QString caption = text.simplified();
    // Full-width look-alikes keep the text readable where the plain
    // characters would split or mark the item.
    static const QList<std::pair<QChar, QChar>> lookAlikes = {{u',', QChar(0xFF0C)},
                                                              {u';', QChar(0xFF1B)},
                                                              {u'|', QChar(0xFF5C)},
                                                              {u'!', QChar(0xFF01)},
                                                              {u'#', QChar(0xFF03)}};
    for (const auto& [plain, lookAlike] : lookAlikes)
        caption.replace(plain, lookAlike);
    if (caption.size() > kLongestCaption)
        caption = caption.left(kLongestCaption - 1) + QChar(0x2026);
    if (caption.isEmpty() || caption == kSeparator)
        caption = u' ' + caption;
    return caption;
}
