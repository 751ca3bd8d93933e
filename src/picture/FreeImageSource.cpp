#include "FreeImageSource.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

FreeImageSource::FreeImageSource(const QString& path)
    : m_file(path), m_io{&FreeImageSource::read, &FreeImageSource::write, &FreeImageSource::seek,
                         &FreeImageSource::tell} {}

FREE_IMAGE_FORMAT FreeImageSource::fileType() {
    rewind();
    return FreeImage_GetFileTypeFromHandle(&m_io, this);
}

FreeImageBitmapPtr FreeImageSource::load(FREE_IMAGE_FORMAT format, int flags) {
    rewind();
    return FreeImageBitmapPtr(FreeImage_LoadFromHandle(format, &m_io, this, flags));
}

void FreeImageSource::rewind() {
    m_file.seek(0);
    m_ranDry = false;
}

unsigned FreeImageSource::read(void* buffer, unsigned size, unsigned count, fi_handle handle) {
    auto* source = static_cast<FreeImageSource*>(handle);
    const qint64 wanted = qint64(size) * count;
    if (wanted == 0)
        return 0;
    const qint64 got = std::max<qint64>(0, source->m_file.read(static_cast<char*>(buffer), wanted));
    if (got < wanted)
        std::memset(static_cast<char*>(buffer) + got, 0, size_t(wanted - got));
    // Reading up to the end in large blocks is normal; asking again once
    // nothing is left is not.
    if (got == 0)
        source->m_ranDry = true;
    return unsigned(got / size);
}

unsigned FreeImageSource::write(void*, unsigned, unsigned, fi_handle) {
    return 0;
}

int FreeImageSource::seek(fi_handle handle, long offset, int origin) {
    QFile& file = static_cast<FreeImageSource*>(handle)->m_file;
    qint64 base = 0;
    if (origin == SEEK_CUR)
        base = file.pos();
    else if (origin == SEEK_END)
        base = file.size();
    const qint64 target = base + offset;
    return target >= 0 && file.seek(target) ? 0 : -1;
}

long FreeImageSource::tell(fi_handle handle) {
    return long(static_cast<FreeImageSource*>(handle)->m_file.pos());
}
