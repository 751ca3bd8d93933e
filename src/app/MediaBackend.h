#pragma once

// Qt Multimedia's media backend, chosen before anything of Qt Multimedia is
// made. Debian's GStreamer backend needs plugins that are not always there
// and then plays a video as nothing, without an error; the FFmpeg backend
// decodes what the program's own codecs decode. A user who names a backend
// in QT_MEDIA_BACKEND keeps it.
namespace MediaBackend {
void choose();
}
