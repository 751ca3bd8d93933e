#include "FreeImageReader.h"

#include "AppError.h"
#include "AppGlobals.h"
#include "FreeImageBitmap.h"
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

// Without a header of its own the size is known only once every pixel is
// decoded, which no limit can guard.
bool measurable(FREE_IMAGE_FORMAT format) {
    return format != FIF_UNKNOWN && FreeImage_FIFSupportsReading(format) &&
           FreeImage_FIFSupportsNoPixels(format);
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
    QSize size;
    {
        const FreeImageBitmapPtr header = m_source.load(m_format, FIF_LOAD_NOPIXELS);
        if (!header) {
            // A header cut short is better told as such than as the decoder's complaint.
            checkComplete();
            return size;
        }
        size = QSize(int(std::min(FreeImage_GetWidth(header.get()), unsigned(INT_MAX))),
                     int(std::min(FreeImage_GetHeight(header.get()), unsigned(INT_MAX))));
    }
    PictureLimits::check(size, m_errorSource, m_shownName);
    checkComplete();
    return size;
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
}

QImage FreeImageReader::read(int flags) {
    const FreeImageBitmapPtr bitmap = m_source.load(m_format, flags);
    if (m_source.ranDry())
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
