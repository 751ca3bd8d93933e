#include "MediaBackend.h"

#include <QByteArray>
#include <QtGlobal>

void MediaBackend::choose() {
    if (qEnvironmentVariableIsEmpty("QT_MEDIA_BACKEND"))
        qputenv("QT_MEDIA_BACKEND", QByteArrayLiteral("ffmpeg"));
}
