#pragma once

#include <QString>

class QMediaPlayer;

namespace MediaSource {
// Gives the player a file to play. Qt's FFmpeg backend (6.4) opens each
// decoder with an options dictionary it never frees: a few bytes per file,
// not ours to mend, which would otherwise bury the leak checker's findings
// in our own code.
void open(QMediaPlayer& player, const QString& file);
} // namespace MediaSource
