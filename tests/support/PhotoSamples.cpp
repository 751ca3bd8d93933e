#include "PhotoSamples.h"

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QProcess>
#include <QtEndian>
#include <cstdlib>
#include <gtest/gtest.h>
#include <random>
#include <zlib.h>

namespace {
void writeBytes(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size())
        ADD_FAILURE() << "cannot write " << path.toStdString();
}

QByteArray encoded(const QImage& picture, const char* format) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    picture.save(&buffer, format);
    return bytes;
}
} // namespace

QString PhotoSamples::gradientJpeg(const QString& path, QSize size) {
    QProcess convert;
    convert.start("convert", {"-size", QString("%1x%2").arg(size.width()).arg(size.height()),
                              "gradient:red-blue", path});
    if (!convert.waitForFinished(300000))
        return "convert: " + convert.errorString();
    if (convert.exitStatus() != QProcess::NormalExit || convert.exitCode() != 0)
        return "convert: " + QString::fromUtf8(convert.readAllStandardError());
    return QString();
}

QColor PhotoSamples::gradientAt(double down) {
    return QColor(qRound(255 * (1 - down)), 0, qRound(255 * down));
}

bool PhotoSamples::near(const QColor& seen, const QColor& expected) {
    const int tolerance = 12;
    return std::abs(seen.red() - expected.red()) <= tolerance &&
           std::abs(seen.green() - expected.green()) <= tolerance &&
           std::abs(seen.blue() - expected.blue()) <= tolerance;
}

void PhotoSamples::pngClaiming(const QString& path, QSize claimed) {
    QImage tiny(2, 2, QImage::Format_RGB32);
    tiny.fill(Qt::green);
    QByteArray png = encoded(tiny, "png");
    // Signature (8), chunk length (4), "IHDR" (4), then width and height.
    const qsizetype type = 12, width = 16, height = 20, crc = 29;
    qToBigEndian<quint32>(quint32(claimed.width()), png.data() + width);
    qToBigEndian<quint32>(quint32(claimed.height()), png.data() + height);
    const uLong sum = crc32(0, reinterpret_cast<const Bytef*>(png.constData() + type), 17);
    qToBigEndian<quint32>(quint32(sum), png.data() + crc);
    writeBytes(path, png);
}

void PhotoSamples::randomBytes(const QString& path, int count) {
    std::mt19937 random(20240611);
    QByteArray bytes;
    for (int i = 0; i < count; ++i)
        bytes.append(char(random() & 0xFF));
    writeBytes(path, bytes);
}

void PhotoSamples::truncatedJpegHeader(const QString& path) {
    QImage picture(64, 48, QImage::Format_RGB32);
    picture.fill(Qt::yellow);
    // Start of image and the JFIF block are whole; the quantisation table is cut.
    writeBytes(path, encoded(picture, "jpeg").left(60));
}
