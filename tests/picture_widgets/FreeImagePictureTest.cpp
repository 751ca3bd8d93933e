#include "FreeImagePicture.h"
#include "AppError.h"
#include "PhotoSamples.h"
#include "ProgramRun.h"

#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <QtEndian>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

namespace {
// Pictures in the formats the picture library reads and Qt does not, made
// by ImageMagick from a picture whose every pixel is known.
class FreeImagePictureTest : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(m_dir.isValid()); }

    QString path(const QString& name) const { return m_dir.filePath(name); }

    // Five by three, every pixel another colour, so a picture read upside
    // down, mirrored or with the wrong byte order or row length shows.
    static QImage known() {
        QImage picture(5, 3, QImage::Format_RGB32);
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < 5; ++x)
                picture.setPixel(x, y, qRgb(40 * x + 10, 100 * y + 20, 200 - 30 * x - 50 * y));
        return picture;
    }

    QString made(const QString& name, const QImage& picture, const QStringList& options = {}) {
        // A two-colour picture goes in as one, or ImageMagick writes grey levels.
        const bool bits = picture.depth() == 1;
        const QString source = path(name + (bits ? ".pbm" : ".ppm"));
        EXPECT_TRUE(picture.save(source, bits ? "PBM" : "PPM"));
        const ProgramRun run =
            runProgram("convert", QStringList{source} + options + QStringList{path(name)});
        EXPECT_EQ(run.code, 0) << run.err.toStdString();
        return path(name);
    }

    static void expectSamePixels(const QImage& loaded, const QImage& expected) {
        ASSERT_EQ(loaded.size(), expected.size());
        for (int y = 0; y < expected.height(); ++y)
            for (int x = 0; x < expected.width(); ++x)
                EXPECT_EQ(QColor(loaded.pixel(x, y)), QColor(expected.pixel(x, y)))
                    << "at " << x << "," << y;
    }

    static QString refusal(const QString& file) {
        try {
            FreeImagePicture::load(file);
        } catch (const AppError& error) {
            EXPECT_EQ(error.source(), FreeImagePicture::ErrorSource);
            return error.description();
        }
        ADD_FAILURE() << "loaded " << file.toStdString();
        return QString();
    }

    QTemporaryDir m_dir;
};

long peakKilobytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}
} // namespace

TEST_F(FreeImagePictureTest, ReadsTargaPcxAndLayeredPicturesPixelForPixel) {
    const QImage picture = known();
    const struct {
        const char* name;
        QStringList options;
    } files[] = {
        {"plain.tga", {"-orient", "TopLeft"}},
        {"packed.tga", {"-orient", "TopLeft", "-compress", "RLE"}},
        {"palette.tga", {"-orient", "TopLeft", "-type", "Palette"}},
        {"true.pcx", {"-type", "TrueColor"}},
        {"palette.pcx", {"-type", "Palette"}},
        {"eight.psd", {"-depth", "8"}},
        {"sixteen.psd", {"-depth", "16"}},
        {"packed.psd", {"-depth", "8", "-compress", "RLE"}},
    };
    for (const auto& file : files) {
        SCOPED_TRACE(file.name);
        expectSamePixels(FreeImagePicture::load(made(file.name, picture, file.options)), picture);
    }
}

TEST_F(FreeImagePictureTest, ReadsATargaStoredBottomRowFirstTheRightWayUp) {
    // Two by two, red and green on top of blue and white, written by hand
    // as the format has it: origin bottom left, so the bottom row first.
    QByteArray targa(18, '\0');
    targa[2] = 2;
    targa[12] = 2;
    targa[14] = 2;
    targa[16] = 24;
    targa += QByteArray::fromHex("ff0000ffffff"
                                 "0000ff00ff00");
    QFile file(path("hand.tga"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(targa);
    file.close();
    QImage expected(2, 2, QImage::Format_RGB32);
    expected.setPixel(0, 0, qRgb(255, 0, 0));
    expected.setPixel(1, 0, qRgb(0, 255, 0));
    expected.setPixel(0, 1, qRgb(0, 0, 255));
    expected.setPixel(1, 1, qRgb(255, 255, 255));
    expectSamePixels(FreeImagePicture::load(path("hand.tga")), expected);
}

TEST_F(FreeImagePictureTest, KeepsATwoColourPictureInTwoColours) {
    QImage picture(11, 3, QImage::Format_RGB32);
    picture.fill(Qt::white);
    for (int x = 0; x < 11; x += 2)
        picture.setPixel(x, x % 3, qRgb(0, 0, 0));
    const QImage loaded = FreeImagePicture::load(
        made("mono.tif", picture.convertToFormat(QImage::Format_Mono, Qt::ThresholdDither)));
    EXPECT_EQ(loaded.depth(), 1);
    expectSamePixels(loaded, picture);
}

TEST_F(FreeImagePictureTest, PicturesTheLibraryCannotMeasureFirstAreReadByQt) {
    // GIF sizes are known only once decoded by the library; Qt reads them from the header.
    const QImage picture = known();
    expectSamePixels(FreeImagePicture::load(made("small.gif", picture)), picture);
}

TEST_F(FreeImagePictureTest, ACutOffFileIsRefusedAsIncomplete) {
    const QImage picture = known().scaled(64, 48);
    const struct {
        const char* name;
        QStringList options;
        int dropped; // bytes cut off the end; 0 for a quarter of the file
    } files[] = {
        {"plain.tga", {}, 0},
        // Decoders that read ahead in blocks miss a few bytes lost at the end.
        {"packed.tga", {"-compress", "RLE"}, 10},
        {"true.pcx", {"-type", "TrueColor"}, 10},
        // Cut inside the palette after the pixels.
        {"palette.pcx", {"-type", "Palette"}, 100},
        // Run-length data cut short once ran the layered-picture decoder
        // past its buffer.
        {"packed.psd", {"-depth", "8", "-compress", "RLE"}, 0},
        {"photo.jpg", {}, 0},
    };
    for (const auto& file : files) {
        SCOPED_TRACE(file.name);
        QFile cut(made(file.name, picture, file.options));
        ASSERT_TRUE(cut.open(QIODevice::ReadWrite));
        ASSERT_TRUE(cut.resize(cut.size() - (file.dropped ? file.dropped : cut.size() / 4)));
        cut.close();
        const QString text = refusal(cut.fileName());
        EXPECT_TRUE(text.contains(file.name)) << text.toStdString();
        EXPECT_TRUE(text.contains("incomplete")) << text.toStdString();
    }
}

TEST_F(FreeImagePictureTest, BytesThatAreNoPictureAreRefusedWithTheProgramsText) {
    for (const char* name : {"noise.png", "noise.pcx", "noise.psd", "noise.xyz"}) {
        SCOPED_TRACE(name);
        PhotoSamples::randomBytes(path(name), 4096);
        const QString text = refusal(path(name));
        EXPECT_TRUE(text.startsWith("The picture")) << text.toStdString();
        EXPECT_TRUE(text.contains(name)) << text.toStdString();
    }
    QFile empty(path("empty.tga"));
    ASSERT_TRUE(empty.open(QIODevice::WriteOnly));
    empty.close();
    EXPECT_TRUE(refusal(path("empty.tga")).contains("empty.tga"));
}

TEST_F(FreeImagePictureTest, AHeaderClaimingAHugePictureIsRefusedBeforeItsPixelsAreMade) {
    // An uncompressed true-colour Targa header and a PCX header, each
    // claiming 60000 x 60000 pixels (10 GB decoded), with no pixels after.
    QByteArray targa(18, '\0');
    targa[2] = 2;
    qToLittleEndian<quint16>(60000, targa.data() + 12);
    qToLittleEndian<quint16>(60000, targa.data() + 14);
    targa[16] = 24;
    QByteArray pcx(128, '\0');
    pcx[0] = 10;
    pcx[1] = 5;
    pcx[2] = 1;
    pcx[3] = 8;
    qToLittleEndian<quint16>(59999, pcx.data() + 8);
    qToLittleEndian<quint16>(59999, pcx.data() + 10);
    pcx[65] = 3;
    qToLittleEndian<quint16>(60000, pcx.data() + 66);
    for (const auto& [name, bytes] : {std::pair("huge.tga", targa), std::pair("huge.pcx", pcx)}) {
        SCOPED_TRACE(name);
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes + QByteArray(64, '\0'));
        file.close();
        const long before = peakKilobytes();
        QElapsedTimer clock;
        clock.start();
        const QString text = refusal(path(name));
        EXPECT_LT(clock.elapsed(), 2000);
        EXPECT_LT(peakKilobytes() - before, 64 * 1024) << "kilobytes more at the peak";
        EXPECT_TRUE(text.contains(name)) << text.toStdString();
        EXPECT_TRUE(text.contains("60000 x 60000")) << text.toStdString();
    }
}

TEST_F(FreeImagePictureTest, WhatIsNoFileIsRefusedWithoutWaiting) {
    EXPECT_TRUE(refusal(path("missing.tga")).contains("missing.tga"));
    ASSERT_EQ(mkfifo(QFile::encodeName(path("pipe.tga")).constData(), 0600), 0);
    EXPECT_TRUE(refusal(path("pipe.tga")).contains("pipe.tga"));
}
