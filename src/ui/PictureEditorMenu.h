#pragma once

#include <QHash>
#include <QList>
#include <QString>

// The picture editor's right-click menu, written as a popup-menu descriptor:
// the editing commands (disabled without a selection or a clipboard to
// paste), the adding commands, and a submenu that selects any object by its
// caption. The captions are fetched once per language by TranslateControl.
class PictureEditorMenu {
public:
    enum Command {
        Dismissed = 0,
        Duplicate = 1,
        Delete = 2,
        BringToFront = 3,
        SendToBack = 4,
        AddText = 5,
        PictureFile = 6,
        PictureBackground = 7,
        BackgroundColor = 8,
        Cut = 9,
        Copy = 10,
        Paste = 11,
        // Selecting the n-th image object is FirstImage + n, the n-th text FirstText + n.
        FirstImage = 100,
        FirstText = 200,
    };

    struct Entry {
        bool isText = false;
        int number = 0; // 1-based among the objects of its kind
        QString caption;
        bool selected = false;
        int index = 0; // among all the slide's objects, 1-based
    };
    struct State {
        bool hasSelection = false;
        bool canPaste = false;
        QList<Entry> objects;
    };

    // The keys of every text the editor shows, in the order it fetches them.
    static const QList<const char*>& keys();

    void TranslateControl();
    QString caption(const char* key) const;
    QString descriptor(const State& state) const;

    // An object's caption made safe for a descriptor: one line, short, and
    // without the characters that separate or mark menu items.
    static QString itemCaption(const QString& text);

private:
    QString item(const char* key, int command, bool enabled = true) const;

    QHash<QString, QString> m_captions;
};
