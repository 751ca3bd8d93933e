#pragma once

#include <QRgb>
#include <QString>
#include <optional>

// Text drawn by the viewer over the picture (GIF plain text extension).
struct GifPlainText {
    int left = 0;
    int top = 0;
    int columns = 0;
    int rows = 0;
    int cellWidth = 8;
    int cellHeight = 8;
    QRgb foreground = qRgb(0, 0, 0);
    QRgb background = qRgb(255, 255, 255);
    QString text;
};

// How a GIF is written: the palette, the row order and the optional blocks.
struct GifOptions {
    bool optimizedPalette = true;
    bool errorDiffusion = true;
    bool interlaced = false;
    // The palette entry nearest to this colour is marked transparent.
    std::optional<QRgb> transparentColour;
    // Written after the encoder's credit line.
    std::optional<QString> comment;
    std::optional<GifPlainText> plainText;
};
