#pragma once

#include <QStringList>

// vellumo-cli convert-image IN OUT [--format bmp|jpg|gif|png|wbmp] [--quality N]
//     [--[no-]dither] [--[no-]optimize] [--raster N] [--interlace] [--transparent RRGGBB]
// Reads any picture the program reads and writes it the way the program saves
// slide pictures, with the settings' encoder options unless the command line
// gives others; the format follows OUT's extension unless --format names one.
class ConvertImageCommand {
public:
    static int run(const QStringList& arguments);
    static QString usage();
};
