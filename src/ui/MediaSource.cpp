#include "MediaSource.h"

#include <QMediaPlayer>
#include <QUrl>

#ifdef __SANITIZE_ADDRESS__
#include <sanitizer/lsan_interface.h>
#endif

void MediaSource::open(QMediaPlayer& player, const QString& file) {
#ifdef __SANITIZE_ADDRESS__
    __lsan::ScopedDisabler foreignLeak;
#endif
    player.setSource(QUrl::fromLocalFile(file));
}
