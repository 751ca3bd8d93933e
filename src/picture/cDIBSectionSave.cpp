#include "cDIBSectionSave.h"

#include "AppError.h"
#include "EventPump.h"
#include "GifLzwEncoder.h"
#include "cDIBSection.h"
#include "cPalette.h"

#include "AtomicFile.h"
#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {
void putWord(QByteArray& out, int value) {
    out.append(static_cast<char>(value & 0xFF));
    out.append(static_cast<char>((value >> 8) & 0xFF));
}

void putSubBlocks(QByteArray& out, const QByteArray& data) {
    for (qsizetype at = 0; at < data.size(); at += 255) {
        const QByteArray chunk = data.mid(at, 255);
        out.append(static_cast<char>(chunk.size()));
        out.append(chunk);
    }
    out.append('\0');
}

int closestIndex(const QImage& indexed, QRgb colour) {
    cPalette palette;
    for (QRgb entry : indexed.colorTable())
        palette.Add(qRed(entry), qGreen(entry), qBlue(entry));
    return palette.ClosestIndex(qRed(colour), qGreen(colour), qBlue(colour));
}

void putScreenAndColours(QByteArray& out, const QImage& indexed, int bits) {
    out.append("GIF89a");
    putWord(out, indexed.width());
    putWord(out, indexed.height());
    out.append(static_cast<char>(0xF0 | (bits - 1)));
    out.append('\0'); // background colour index
    out.append('\0'); // pixel aspect ratio
    const QList<QRgb> colours = indexed.colorTable();
    for (int i = 0; i < (1 << bits); ++i) {
        const QRgb colour = colours.value(i, qRgb(0, 0, 0));
        out.append(static_cast<char>(qRed(colour)));
        out.append(static_cast<char>(qGreen(colour)));
        out.append(static_cast<char>(qBlue(colour)));
    }
}

void putTransparency(QByteArray& out, int index) {
    // Leave the image in place; the transparent colour flag is set.
    out.append("\x21\xF9\x04\x05", 4);
    putWord(out, 0);
    out.append(static_cast<char>(index));
    out.append('\0');
}

void putPlainText(QByteArray& out, const QImage& indexed, const GifPlainText& text) {
    const bool fits = text.cellWidth >= 0 && text.cellWidth <= 255 && text.cellHeight >= 0 &&
                      text.cellHeight <= 255 && text.columns >= 0 && text.rows >= 0 &&
                      text.left >= 0 && text.left <= 0xFFFF && text.top >= 0 &&
                      text.top <= 0xFFFF && qint64(text.columns) * text.cellWidth <= 0xFFFF &&
                      qint64(text.rows) * text.cellHeight <= 0xFFFF;
    if (!fits)
        throw AppError(cDIBSectionSave::ErrorSource, "The text grid does not fit into a GIF");
    out.append("\x21\x01\x0C", 3);
    putWord(out, text.left);
    putWord(out, text.top);
    putWord(out, text.columns * text.cellWidth);
    putWord(out, text.rows * text.cellHeight);
    out.append(static_cast<char>(text.cellWidth));
    out.append(static_cast<char>(text.cellHeight));
    out.append(static_cast<char>(closestIndex(indexed, text.foreground)));
    out.append(static_cast<char>(closestIndex(indexed, text.background)));
    putSubBlocks(out, text.text.toLatin1());
}

// The rows in the order they are written: top to bottom, or the four passes
// of an interlaced GIF.
QList<int> rowOrder(int height, bool interlaced) {
    QList<int> rows;
    rows.reserve(height);
    if (!interlaced) {
        for (int y = 0; y < height; ++y)
            rows.append(y);
        return rows;
    }
    const int starts[] = {0, 4, 2, 1}, steps[] = {8, 8, 4, 2};
    for (int pass = 0; pass < 4; ++pass)
        for (int y = starts[pass]; y < height; y += steps[pass])
            rows.append(y);
    return rows;
}

void putImage(QByteArray& out, const QImage& indexed, int bits, bool interlaced) {
    out.append(',');
    putWord(out, 0);
    putWord(out, 0);
    putWord(out, indexed.width());
    putWord(out, indexed.height());
    out.append(static_cast<char>(interlaced ? 0x40 : 0));
    const int minimumCodeSize = bits == 1 ? 2 : bits;
    out.append(static_cast<char>(minimumCodeSize));
    GifLzwEncoder encoder(minimumCodeSize, out);
    for (int y : rowOrder(indexed.height(), interlaced)) {
        const uchar* row = indexed.constScanLine(y);
        for (int x = 0; x < indexed.width(); ++x)
            encoder.addPixel(row[x]);
        pumpEvents();
    }
    encoder.finish();
}

QString tempName(const QString& fileName) {
    const QFileInfo info(fileName);
    return info.dir().filePath("TMP" + info.fileName());
}
} // namespace

int cDIBSectionSave::bitsPerPixel(int colours) {
    int bits = 1;
    while (bits < 8 && (1 << bits) < colours)
        ++bits;
    return bits;
}

QByteArray cDIBSectionSave::Encode(const QImage& indexed, const GifOptions& options) {
    const int colours = static_cast<int>(indexed.colorCount());
    if (indexed.format() != QImage::Format_Indexed8 || indexed.width() <= 0 ||
        indexed.height() <= 0 || indexed.width() > 0xFFFF || indexed.height() > 0xFFFF ||
        colours < 1 || colours > 256)
        throw AppError(ErrorSource, "Cannot Create DIBSection");
    const int bits = bitsPerPixel(colours);
    QByteArray out;
    putScreenAndColours(out, indexed, bits);
    if (options.transparentColour)
        putTransparency(out, closestIndex(indexed, *options.transparentColour));
    if (options.comment) {
        out.append("\x21\xFE", 2);
        putSubBlocks(out, (QString(CreditLine) + " " + *options.comment).toLatin1());
    }
    if (options.plainText)
        putPlainText(out, indexed, *options.plainText);
    putImage(out, indexed, bits, options.interlaced);
    out.append(';');
    return out;
}

void cDIBSectionSave::Save(const QString& fileName, const QImage& indexed,
                           const GifOptions& options) {
    const QByteArray bytes = Encode(indexed, options);
    AtomicFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        throw AppError(ErrorSource, "PictureBoxToGif function failed: " + file.errorString());
}

QString cDIBSectionSave::SaveStdPicture(const QImage& picture, const QString& fileName,
                                        const GifOptions& options, bool useTempName) {
    cDIBSection dib;
    if (!dib.Create(picture.width(), picture.height()))
        throw AppError(ErrorSource, "Cannot Create DIBSection");
    if (!dib.LoadPictureBlt(picture))
        throw AppError(ErrorSource, "Cannot Select DIBSection into DC");
    cPalette palette;
    if (options.optimizedPalette)
        palette.CreateOptimal(dib);
    else
        palette.CreateStandard();
    const QImage indexed = palette.ApplyPalette(dib, options.errorDiffusion);
    const QString target = useTempName ? tempName(fileName) : fileName;
    if (useTempName && QFile::exists(target) && !QFile::remove(target))
        throw AppError(ErrorSource, "PictureBoxToGif function failed: cannot delete " + target);
    Save(target, indexed, options);
    return target;
}
