#pragma once

#include <FreeImage.h>
#include <QFile>
#include <QString>
#include <memory>

struct FreeImageBitmapDeleter {
    void operator()(FIBITMAP* bitmap) const { FreeImage_Unload(bitmap); }
};
using FreeImageBitmapPtr = std::unique_ptr<FIBITMAP, FreeImageBitmapDeleter>;

// A picture file as the decoding library reads it: through QFile, so every
// path the program can name is read the same way. A decoder asking for
// bytes past the end gets zeros instead of whatever its buffer held, and
// the source remembers that it ran dry: several decoders carry on quietly
// over a cut-off file and hand back a picture that is partly garbage.
class FreeImageSource {
public:
    explicit FreeImageSource(const QString& path);
    FreeImageSource(const FreeImageSource&) = delete;
    FreeImageSource& operator=(const FreeImageSource&) = delete;

    bool open() { return m_file.open(QIODevice::ReadOnly); }
    QString errorString() const { return m_file.errorString(); }
    QFile& file() { return m_file; }

    // The format told by the file's first bytes, FIF_UNKNOWN when they tell none.
    FREE_IMAGE_FORMAT fileType();
    // Decodes from the start of the file; nullptr when the decoder gives up.
    FreeImageBitmapPtr load(FREE_IMAGE_FORMAT format, int flags);
    // True when the last load wanted bytes after the end of the file.
    bool ranDry() const { return m_ranDry; }

private:
    static unsigned read(void* buffer, unsigned size, unsigned count, fi_handle handle);
    static unsigned write(void* buffer, unsigned size, unsigned count, fi_handle handle);
    static int seek(fi_handle handle, long offset, int origin);
    static long tell(fi_handle handle);
    void rewind();

    QFile m_file;
    bool m_ranDry = false;
    FreeImageIO m_io;
};
