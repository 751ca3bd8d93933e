#include "clsClipboardManager.h"

#include "AppError.h"
#include "AppGlobals.h"
#include "AppPaths.h"
#include "AtomicFile.h"
#include "PictureFile.h"
#include "PictureLimits.h"
#include "PlainFileName.h"

#include <QBuffer>
#include <QClipboard>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QMimeData>
#include <QRegularExpression>
#include <cmath>
#include <memory>

namespace {
constexpr qsizetype ImageFields = 6;
constexpr qsizetype TextFields = 14;
constexpr int Min16 = -32768;
constexpr int Max16 = 32767;
constexpr int MaxColor = 0xFFFFFF;
constexpr int MaxCharset = 255;

QString ownFormat() {
    return QStringLiteral("application/x-vellumo-") + clsClipboardManager::PrivateFormatID;
}
QString pictureFormat() {
    return ownFormat() + QStringLiteral("-picture");
}

bool fail(QString* why, const QString& text) {
    if (why)
        *why = text;
    return false;
}

QString unusableText() {
    return AppGlobals::text("STR_CLIPBOARD_UNUSABLE",
                            "The clipboard holds nothing that can be put on a slide.");
}
QString noFileText() {
    return AppGlobals::text("STR_NO_FILE_FOUND", "The file cannot be found.");
}
QString writeText(const QString& name, const QString& reason) {
    return AppGlobals::text("ERR_PICTURE_WRITE", "Cannot write the picture %0: %1", {name, reason});
}

// Whether the file name ends in the extension of a picture the program takes.
bool isPictureName(const QString& fileName) {
    static const QStringList extensions{".bmp", ".jpg", ".jpeg", ".gif",
                                        ".png", ".tif", ".tiff", ".wbmp"};
    return extensions.contains(AppPaths::extensionOf(fileName).toLower());
}
QString clipFileName(const QString& pictureName) {
    return QStringLiteral("clipimg") + AppPaths::extensionOf(pictureName).toLower();
}

QString word(bool value) {
    return value ? QStringLiteral("True") : QStringLiteral("False");
}
QString number(qint64 value) {
    return QString::number(value);
}

// Only what the program writes is read, an optional minus and digits: a string
// changed on its way is refused rather than half understood.
bool readInteger(const QString& field, int low, int high, int& value) {
    static const QRegularExpression decimal(QRegularExpression::anchoredPattern("-?[0-9]+"));
    bool ok = false;
    const qlonglong read = field.toLongLong(&ok);
    if (!decimal.match(field).hasMatch() || !ok || read < low || read > high)
        return false;
    value = int(read);
    return true;
}
bool readWord(const QString& field, bool& value) {
    if (field != word(true) && field != word(false))
        return false;
    value = field == word(true);
    return true;
}

bool readPlacement(const QStringList& fields, DrawObjectProperties& object) {
    return readInteger(fields[2], Min16, Max16, object.x) &&
           readInteger(fields[3], Min16, Max16, object.y) &&
           readInteger(fields[4], Min16, Max16, object.w) &&
           readInteger(fields[5], Min16, Max16, object.h);
}

std::optional<DrawObjectProperties> readImage(const QStringList& fields) {
    DrawObjectProperties object;
    object.typ = QStringLiteral("image");
    object.image = fields[1];
    if (!PlainFileName::isPlain(object.image) || !isPictureName(object.image) ||
        !readPlacement(fields, object))
        return std::nullopt;
    return object;
}

std::optional<DrawObjectProperties> readText(const QStringList& fields) {
    DrawObjectProperties object;
    object.typ = QStringLiteral("text");
    object.text = fields[1];
    object.fontName = fields[6];
    int size = 0;
    int color = 0;
    const bool read = readPlacement(fields, object) && readInteger(fields[7], Min16, Max16, size) &&
                      readInteger(fields[8], 0, MaxColor, color) &&
                      readWord(fields[9], object.bold) && readWord(fields[10], object.italic) &&
                      readWord(fields[11], object.underline) &&
                      readInteger(fields[12], Min16, Max16, object.fontAlign) &&
                      readInteger(fields[13], 0, MaxCharset, object.charset);
    if (!read)
        return std::nullopt;
    object.fontSize = size;
    object.fontColor = color;
    return object;
}

QString ownString(const QMimeData& mime) {
    return QString::fromUtf8(mime.data(ownFormat()));
}
void putOwnString(QMimeData& mime, const QString& text) {
    mime.setData(ownFormat(), text.toUtf8());
}
bool hasPlainText(const QMimeData& mime) {
    return mime.hasText() && !mime.text().isEmpty();
}

// The clip file is the one file the clipboard replaces. A link planted under
// its name would make that write land wherever the link points.
QString linkRefusal(const QString& path) {
    return QFileInfo(path).isSymLink() ? QStringLiteral("it is a link; links are not followed")
                                       : QString();
}
bool writeClipFile(const QString& folder, const QString& name, const QByteArray& bytes,
                   QString* why) {
    const QString path = AppPaths::withSlash(folder) + name;
    QString reason = linkRefusal(path);
    if (reason.isEmpty() && AtomicFile::writeFile(path, bytes, &reason))
        return true;
    return fail(why, writeText(name, reason));
}
bool copyClipFile(const QString& folder, const QString& source, const QString& name, QString* why) {
    const QString path = AppPaths::withSlash(folder) + name;
    QString reason = linkRefusal(path);
    if (reason.isEmpty() && PlainFileName::copy(folder, source, path, &reason))
        return true;
    return fail(why, writeText(name, reason));
}

// The clip file's bytes for another running copy of the program; none when
// they are more than a paste takes.
QByteArray clipBytes(const QString& folder, const QString& name) {
    QFile file;
    if (!PlainFileName::open(folder, name, file) ||
        file.size() > clsClipboardManager::MaxPictureBytes)
        return QByteArray();
    return file.readAll();
}

std::optional<QImage> loadPicture(const QString& path, QString* why) {
    try {
        return PictureFile::load(path);
    } catch (const AppError& error) {
        fail(why, error.description());
        return std::nullopt;
    }
}

// Other programs get the picture itself; the program's own string and the
// clip file only when the string can be read back.
bool putPicture(QMimeData& mime, const QString& folder, const DrawObjectProperties& object,
                QString* why) {
    const QString source = PlainFileName::existingFile(folder, object.image);
    if (source.isEmpty())
        return fail(why, noFileText());
    const std::optional<QImage> picture = loadPicture(source, why);
    if (!picture)
        return false;
    mime.setImageData(*picture);
    DrawObjectProperties clip = object;
    clip.image = clipFileName(object.image);
    const QString text = clsClipboardManager::clipString(clip);
    if (!clsClipboardManager::parseClipString(text))
        return true;
    if (!copyClipFile(folder, object.image, clip.image, why))
        return false;
    putOwnString(mime, text);
    const QByteArray bytes = clipBytes(folder, clip.image);
    if (!bytes.isEmpty())
        mime.setData(pictureFormat(), bytes);
    return true;
}

void putText(QMimeData& mime, const DrawObjectProperties& object) {
    mime.setText(object.text);
    const QString text = clsClipboardManager::clipString(object);
    if (clsClipboardManager::parseClipString(text))
        putOwnString(mime, text);
}

ClipboardPaste pasted(const DrawObjectProperties& object) {
    ClipboardPaste paste;
    paste.kind = ClipboardPaste::Object;
    paste.object = object;
    return paste;
}
ClipboardPaste refused(const QString& why) {
    ClipboardPaste paste;
    paste.kind = ClipboardPaste::Refused;
    paste.why = why;
    return paste;
}

// The picture's bytes, when they came along, replace the clip file: in another
// running copy of the program the clip file named is not this work folder's.
ClipboardPaste pasteOwnPicture(const QMimeData& mime, const QString& folder,
                               DrawObjectProperties object) {
    if (mime.hasFormat(pictureFormat())) {
        const QByteArray bytes = mime.data(pictureFormat());
        if (bytes.size() > clsClipboardManager::MaxPictureBytes)
            return refused(unusableText());
        object.image = clipFileName(object.image);
        QString why;
        if (!writeClipFile(folder, object.image, bytes, &why))
            return refused(why);
    }
    const QString path = PlainFileName::existingFile(folder, object.image);
    if (path.isEmpty())
        return refused(noFileText());
    try {
        PictureFile::probe(path);
    } catch (const AppError& error) {
        return refused(error.description());
    }
    return pasted(object);
}

ClipboardPaste pasteForeignPicture(const QImage& picture, const QString& folder) {
    try {
        PictureLimits::check(picture.size(), PictureFile::ErrorSource);
    } catch (const AppError& error) {
        return refused(error.description());
    }
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    if (!picture.save(&buffer, "PNG"))
        return refused(unusableText());
    const QString name = QStringLiteral("clipimg.png");
    QString why;
    if (!writeClipFile(folder, name, png, &why))
        return refused(why);
    return pasted(DrawObjectProperties::forImage(name, QRect()));
}
} // namespace

clsClipboardManager::clsClipboardManager(QClipboard* clipboard) : m_clipboard(clipboard) {}

bool clsClipboardManager::IsDataAvaliable() const {
    const QMimeData* mime = m_clipboard->mimeData();
    return mime && mime->hasFormat(ownFormat());
}

QString clsClipboardManager::GetPrivateClipboardString() const {
    const QMimeData* mime = m_clipboard->mimeData();
    return mime ? ownString(*mime) : QString();
}

void clsClipboardManager::SetPrivateClipboardString(const QString& text) {
    auto mime = std::make_unique<QMimeData>();
    putOwnString(*mime, text);
    m_clipboard->setMimeData(mime.release());
}

bool clsClipboardManager::copyObject(const QString& workFolder, const DrawObjectProperties& object,
                                     QString* why) {
    auto mime = std::make_unique<QMimeData>();
    if (object.typ == QLatin1String("text"))
        putText(*mime, object);
    else if (object.typ != QLatin1String("image") || !putPicture(*mime, workFolder, object, why))
        return false;
    m_clipboard->setMimeData(mime.release());
    return true;
}

bool clsClipboardManager::canPaste() const {
    const QMimeData* mime = m_clipboard->mimeData();
    return mime && (parseClipString(ownString(*mime)).has_value() || mime->hasImage() ||
                    hasPlainText(*mime));
}

ClipboardPaste clsClipboardManager::paste(const QString& workFolder) const {
    const QMimeData* mime = m_clipboard->mimeData();
    if (!mime || mime->formats().isEmpty())
        return ClipboardPaste();
    if (const auto object = parseClipString(ownString(*mime)))
        return object->typ == QLatin1String("image") ? pasteOwnPicture(*mime, workFolder, *object)
                                                     : pasted(*object);
    if (mime->hasImage())
        return pasteForeignPicture(qvariant_cast<QImage>(mime->imageData()), workFolder);
    if (hasPlainText(*mime))
        return pasted(DrawObjectProperties::forText(mime->text(), QRect()));
    return refused(unusableText());
}

QString clsClipboardManager::clipString(const DrawObjectProperties& object) {
    const bool image = object.typ == QLatin1String("image");
    QStringList fields{object.typ,       image ? object.image : object.text,
                       number(object.x), number(object.y),
                       number(object.w), number(object.h)};
    if (!image)
        fields << object.fontName << QString::number(std::round(object.fontSize), 'f', 0)
               << number(object.fontColor) << word(object.bold) << word(object.italic)
               << word(object.underline) << number(object.fontAlign) << number(object.charset);
    return fields.join(u';');
}

std::optional<DrawObjectProperties> clsClipboardManager::parseClipString(const QString& text) {
    const QStringList fields = text.split(u';');
    if (fields[0] == QLatin1String("image") && fields.size() == ImageFields)
        return readImage(fields);
    if (fields[0] == QLatin1String("text") && fields.size() == TextFields)
        return readText(fields);
    return std::nullopt;
}
