#pragma once

#include "clsDrawObject.h"

#include <QGuiApplication>
#include <QString>
#include <optional>

class QClipboard;

// What a paste brought.
struct ClipboardPaste {
    enum Kind {
        Nothing, // the clipboard is empty
        Object,  // object holds what to put on the slide
        Refused  // the clipboard holds something that cannot be pasted; why says so
    };
    Kind kind = Nothing;
    // An image's `image` names a file in the work folder holding the picture
    // ("clipimg.png"), which the next copy or paste replaces: the editor takes
    // it in under a name of its own. A text carries every property the
    // clipboard had; one from another program has the new-text font. Objects
    // from another program have no position or size: the editor places them.
    DrawObjectProperties object;
    QString why; // Refused: the text for the user
};

// Copies draw objects to the clipboard and pastes them, between slides, between
// running copies of the program and to and from other programs.
//
// The program's own format holds one string of fields separated by ";":
//   image;<clip file>;Left;Top;Width;Height
//   text;Caption;Left;Top;Width;Height;font name;font size;ForeColor;Bold;Italic;
//       Underline;Alignment;charset
// The clip file is a copy of the picture in the work folder, "clipimg" and the
// picture's extension. The picture's bytes go along in a second format, since
// another running copy of the program has a work folder of its own. Other
// programs get the picture or the caption in their usual formats.
class clsClipboardManager {
public:
    static constexpr const char* PrivateFormatID = "2C81C8FC-7C9A-4ABC-B800-26649F7A2C73";
    // Picture bytes on the clipboard beyond this are not taken.
    static constexpr qint64 MaxPictureBytes = 64 * 1024 * 1024;

    explicit clsClipboardManager(QClipboard* clipboard = QGuiApplication::clipboard());

    // Whether the program's own format is on the clipboard.
    bool IsDataAvaliable() const;
    // The program's own string; "" when there is none.
    QString GetPrivateClipboardString() const;
    // Replaces the clipboard with the program's own string alone.
    void SetPrivateClipboardString(const QString& text);

    // Puts one object on the clipboard. An image's picture file (in workFolder)
    // is copied to the clip file first. Returns false, the clipboard as it was
    // and *why filled for the user, when the picture cannot be read or copied;
    // false also for an object that is neither an image nor a text. What the
    // program's string cannot carry (a caption holding ";", a number out of
    // range) goes on the clipboard only in the formats other programs read.
    bool copyObject(const QString& workFolder, const DrawObjectProperties& object,
                    QString* why = nullptr);

    // Whether paste would bring an object: the program's own format as it
    // should be, a picture or a text.
    bool canPaste() const;
    // The object on the clipboard. Picture files are written into workFolder
    // as the clip file and nowhere else.
    ClipboardPaste paste(const QString& workFolder) const;

    // The program's string for an image (its `image` being the clip file's
    // name) or a text.
    static QString clipString(const DrawObjectProperties& object);
    // The object a string describes; nothing when the string is not one the
    // program writes, when a number is out of range or the clip file's name is
    // not a plain picture file name.
    static std::optional<DrawObjectProperties> parseClipString(const QString& text);

private:
    QClipboard* m_clipboard;
};
