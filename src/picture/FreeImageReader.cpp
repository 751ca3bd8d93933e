#include "FreeImageReader.h"

#include "AppError.h"
#include "AppGlobals.h"
#include "FreeImageBitmap.h"
#include "PictureHeaderSize.h"
#include "PictureLength.h"
#include "PictureLimits.h"

#include <QFileInfo>
#include <algorithm>
#include <climits>
#include <optional>

namespace {
// What the library said while this thread decoded; it reports through a
// process-wide callback, so each loading thread keeps its own.
thread_local QString t_libraryMessage;

void collectMessage(FREE_IMAGE_FORMAT, const char* message) {
    if (!t_libraryMessage.isEmpty())
        t_libraryMessage += u' ';
    t_libraryMessage += QString::fromLocal8Bit(message);
}

// The library is set up once, on first use from whichever thread, and shut
// down when the program ends.
class Library {
public:
    Library() {
        FreeImage_Initialise(FALSE);
        FreeImage_SetOutputMessage(&collectMessage);
    }
    ~Library() { FreeImage_DeInitialise(); }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
};

void useLibrary() {
    static Library library;
}

// The formats whose size the program reads from the header itself, as the
// library reads it only while decoding every pixel.
std::optional<PictureHeaderSize::Format> headerFormat(FREE_IMAGE_FORMAT format) {
    switch (format) {
    case FIF_SGI:
        return PictureHeaderSize::SiliconGraphics;
    case FIF_DDS:
        return PictureHeaderSize::DirectDraw;
    case FIF_J2K:
        return PictureHeaderSize::Jpeg2000Stream;
    case FIF_JP2:
        return PictureHeaderSize::Jpeg2000File;
    default:
        return std::nullopt;
    }
}

// Without a size known before decoding no limit can guard the decoder.
bool measurable(FREE_IMAGE_FORMAT format) {
    return format != FIF_UNKNOWN && FreeImage_FIFSupportsReading(format) &&
           (FreeImage_FIFSupportsNoPixels(format) || headerFormat(format));
}

int edge(unsigned value) {
    return int(std::min(value, unsigned(INT_MAX)));
}
} // namespace

FreeImageReader::FreeImageReader(const QString& path, QString shownName, const char* errorSource)
    : m_shownName(std::move(shownName)), m_errorSource(errorSource), m_source(path) {
    // Reader threads are reused: what the library said of an earlier file
    // must not be told of this one.
    t_libraryMessage.clear();
    const QFileInfo info(path);
    // A pipe or a device under a picture's name would hold the reader forever.
    if (info.exists() && !info.isFile())
        refuseUndecodable();
    useLibrary();
    if (!m_source.open())
        refuse(AppGlobals::text("ERR_PICTURE_UNREADABLE", "Cannot read the picture %0: %1",
                                {m_shownName, m_source.errorString()}));
    const FREE_IMAGE_FORMAT format = m_source.fileType();
    m_format = measurable(format) ? format : FIF_UNKNOWN;
}

bool FreeImageReader::isFormat(const QByteArray& qtName) const {
    const QByteArray name = QByteArray(FreeImage_GetFormatFromFIF(m_format)).toLower();
    // The library names the raw variants of the portable formats "PBMRAW" and so on.
    return m_format != FIF_UNKNOWN && !qtName.isEmpty() && name.startsWith(qtName.toLower());
}

QSize FreeImageReader::size() {
    const QSize size = declaredSize();
    // Checked even when the header does not read: a header cut short is
    // better told as such than as the decoder's complaint.
    if (size.isValid())
        PictureLimits::check(size, m_errorSource, m_shownName);
    checkComplete();
    return size;
}

QSize FreeImageReader::declaredSize() {
    if (const auto format = headerFormat(m_format))
        return PictureHeaderSize::read(m_source.file(), *format).value_or(QSize());
    const FreeImageBitmapPtr header = m_source.load(m_format, FIF_LOAD_NOPIXELS);
    return header ? QSize(edge(FreeImage_GetWidth(header.get())),
                          edge(FreeImage_GetHeight(header.get())))
                  : QSize();
}

void FreeImageReader::checkComplete() {
    std::optional<qint64> length;
    if (m_format == FIF_PSD)
        length = PictureLength::required(m_source.file(), PictureLength::Layered);
    else if (m_format == FIF_TARGA)
        length = PictureLength::required(m_source.file(), PictureLength::Targa);
    else if (m_format == FIF_PCX)
        length = PictureLength::required(m_source.file(), PictureLength::Pcx);
    if (length && *length > m_source.file().size())
        refuseIncomplete();
    const auto format = headerFormat(m_format);
    const bool jpeg2000 = m_format == FIF_J2K || m_format == FIF_JP2;
    if (jpeg2000 && !PictureHeaderSize::codeStreamComplete(m_source.file(), *format))
        refuseIncomplete();
}

QImage FreeImageReader::read(int flags) {
    const FreeImageBitmapPtr bitmap = m_source.load(m_format, flags);
    // The JPEG 2000 decoder looks for another box after the last one, and
    // its files were measured whole before.
    const bool looksPastTheEnd = m_format == FIF_JP2;
    if (m_source.ranDry() && !looksPastTheEnd)
        refuseIncomplete();
    if (!bitmap)
        return QImage();
    const QImage image = FreeImageBitmap::toImage(bitmap.get());
    if (image.isNull())
        refuse(AppGlobals::text("ERR_PICTURE_MEMORY",
                                "There is not enough memory to show the picture %0.",
                                {m_shownName}));
    return image;
}

void FreeImageReader::refuseUndecodable() const {
    if (t_libraryMessage.isEmpty())
        refuse(AppGlobals::text("ERR_PICTURE_UNDECODABLE",
                                "The picture %0 cannot be decoded: the file is damaged or not a "
                                "picture the program reads.",
                                {m_shownName}));
    refuse(AppGlobals::text("ERR_PICTURE_DECODER", "The picture %0 cannot be decoded: %1",
                            {m_shownName, t_libraryMessage}));
}

void FreeImageReader::refuseIncomplete() const {
    refuse(AppGlobals::text("ERR_PICTURE_TRUNCATED",
                            "The picture %0 is incomplete: the file ends before the picture does.",
                            {m_shownName}));
}

void FreeImageReader::refuse(const QString& text) const {
    throw AppError(m_errorSource, text);
}
