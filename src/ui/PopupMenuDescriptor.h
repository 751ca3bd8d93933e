#pragma once

#include <QList>
#include <QString>

// One entry of a popup menu: a command, a separator or a sub-menu header.
struct PopupMenuItem {
    QString caption; // as Qt shows it: "&" marks the mnemonic, "&&" is an ampersand
    int number = 0;  // the command reported when chosen; 0 is never a command
    bool enabled = true;
    bool checked = false;
    bool separator = false;
    bool subMenu = false;
    QList<PopupMenuItem> children; // the items of a sub-menu, in order
};

// Every menu of the program is written as one descriptor text:
//   entries are separated by ",";
//   an entry with "|" is a sub-menu: "Header;0|Item|Item..." (only one level deep);
//   an item "Text;n" carries the command n; any other item takes the next number of a
//   counter that starts at 0 for each descriptor and that explicit numbers leave alone;
//   "-" is a separator (it still uses up a counter number);
//   "!" anywhere disables an item or header, "#" anywhere checks an item, and either one
//   costs the caption its first character ("!" wins over "#").
// Parsing is a pure function, so menus can be checked without a screen.
class PopupMenuDescriptor {
public:
    static QList<PopupMenuItem> parse(const QString& descriptor);
};
