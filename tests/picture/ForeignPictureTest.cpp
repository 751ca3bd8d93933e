#include "PhotoSamples.h"
#include "PictureFile.h"
#include "PictureTestSupport.h"
#include "TempDataHome.h"

#include <QColor>
#include <QtEndian>
#include <gtest/gtest.h>
#include <sys/resource.h>

// Pictures in formats Qt does not read, or reads only some kinds of, made
// by ImageMagick and taken in wherever pictures enter: each must come out
// as ImageMagick itself decodes it, and a hostile one must be refused with
// the file's name before its pixels cost anything.
namespace {
class ForeignPictureTest : public TempDataHome {
protected:
    QString path(const QString& name) const { return dataFile(name); }

    // Seven by five, every pixel another colour, so a picture read upside
    // down, mirrored, with the wrong byte order or row length shows.
    static QImage known() {
        QImage picture(7, 5, QImage::Format_RGB32);
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                picture.setPixel(x, y, qRgb(35 * x + 10, 50 * y + 20, 220 - 20 * x - 25 * y));
        return picture;
    }

    // By ImageMagick, in the format of the name unless "as" names another ("tga:").
    QString made(const QString& name, const QStringList& options, QSize size = QSize(7, 5),
                 const QString& as = QString()) {
        const QString source = path(name + ".ppm");
        EXPECT_TRUE(known().scaled(size).save(source, "PPM"));
        const ToolRun run =
            runTool("convert", QStringList{source} + options + QStringList{as + path(name)});
        EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
        return path(name);
    }

    QString made(const QString& name, const QByteArray& bytes) {
        writeFile(path(name), bytes);
        return path(name);
    }

    // What ImageMagick decodes the file to, eight bits a channel, turned the
    // way up the file says (ImageMagick writes Targa rows top first but marks
    // them bottom first, and reads them back without turning them).
    QImage asImageMagickSees(const QString& file) {
        const QString seen = path("seen.ppm");
        const ToolRun run =
            runTool("convert", {file, "-auto-orient", "-depth", "8", "ppm:" + seen});
        EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
        return QImage(seen, "PPM");
    }

    static void expectSamePixels(const QImage& loaded, const QImage& expected) {
        ASSERT_EQ(loaded.size(), expected.size());
        for (int y = 0; y < expected.height(); ++y)
            for (int x = 0; x < expected.width(); ++x)
                ASSERT_EQ(QColor(loaded.pixel(x, y)), QColor(expected.pixel(x, y)))
                    << "at " << x << "," << y;
    }

    // A layered picture's file: header, no colour table, no resources, the
    // given layer section, then uncompressed planes of the merged picture.
    static QByteArray layered(QSize size, const QByteArray& layers, const QByteArray& pixels) {
        QByteArray bytes("8BPS\0\1\0\0\0\0\0\0\0\3", 14);
        bytes.resize(26);
        qToBigEndian<quint32>(quint32(size.height()), bytes.data() + 14);
        qToBigEndian<quint32>(quint32(size.width()), bytes.data() + 18);
        qToBigEndian<quint16>(8, bytes.data() + 22);
        qToBigEndian<quint16>(3, bytes.data() + 24);
        bytes += QByteArray(8, '\0'); // no colour table, no resources
        QByteArray section(4, '\0');
        qToBigEndian<quint32>(quint32(layers.size()), section.data());
        return bytes + section + layers + QByteArray(2, '\0') + pixels;
    }
};

long peakKilobytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}
} // namespace

TEST_F(ForeignPictureTest, EveryPictureTheLibraryReadsIsTakenInAsImageMagickDecodesIt) {
    const struct {
        const char* name;
        QStringList options;
        const char* as = "";
    } files[] = {
        {"plain.tga", {"-orient", "TopLeft"}},
        {"bottom-up.tga", {"-orient", "BottomLeft"}},
        {"packed.tga", {"-compress", "RLE"}},
        {"palette.tga", {"-type", "Palette"}},
        {"grey.tga", {"-colorspace", "Gray"}},
        {"true.pcx", {"-type", "TrueColor"}},
        {"palette.pcx", {"-type", "Palette"}},
        {"eight.psd", {"-depth", "8"}},
        {"sixteen.psd", {"-depth", "16"}},
        {"packed.psd", {"-depth", "8", "-compress", "RLE"}},
        {"sun.ras", {}},
        // Formats whose size the program reads from the header itself.
        {"plain.sgi", {"-compress", "None"}},
        {"packed.sgi", {"-compress", "RLE"}},
        {"texture.dds", {"-define", "dds:compression=none"}},
        {"stream.j2k", {}},
        {"boxed.jp2", {}},
        // Named for what they are not: the bytes decide.
        {"targa.png", {}, "tga:"},
        {"layers.jpg", {}, "psd:"},
        {"png.tga", {}, "png:"},
    };
    for (const auto& file : files) {
        SCOPED_TRACE(file.name);
        made(file.name, file.options, QSize(7, 5), file.as);
        const QImage seen = asImageMagickSees(file.as + path(file.name));
        ASSERT_FALSE(seen.isNull());
        EXPECT_EQ(appErrorOf([&] { PictureFile::probe(path(file.name)); }), QString());
        expectSamePixels(PictureFile::load(path(file.name)), seen);
        // Drawn smaller, as on a slide, and stretched the same way.
        const QImage drawn = PictureFile::load(path(file.name), QSize(3, 9));
        EXPECT_EQ(drawn.size(), QSize(3, 5));
        const QImage scaled = seen.scaled(3, 5, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        for (int y = 0; y < 5; ++y)
            EXPECT_PRED2(PhotoSamples::near, drawn.pixelColor(1, y), scaled.pixelColor(1, y));
    }
}

TEST_F(ForeignPictureTest, ALayeredPictureWithoutLayersIsItsMergedPicture) {
    // Two by one: red and blue, planes of red, green and blue one after the other.
    const QImage picture = PictureFile::load(made(
        "flat.psd", layered(QSize(2, 1), QByteArray(), QByteArray("\xff\x00\x00\x00\x00\xff", 6))));
    ASSERT_EQ(picture.size(), QSize(2, 1));
    EXPECT_EQ(QColor(picture.pixel(0, 0)), QColor(255, 0, 0));
    EXPECT_EQ(QColor(picture.pixel(1, 0)), QColor(0, 0, 255));
    expectSamePixels(picture, asImageMagickSees(path("flat.psd")));
}

TEST_F(ForeignPictureTest, HugeDeclaredSizesAreRefusedFromTheHeaderWithTheFilesName) {
    QByteArray targa(18, '\0');
    targa[2] = 2;
    qToLittleEndian<quint16>(60000, targa.data() + 12);
    qToLittleEndian<quint16>(60000, targa.data() + 14);
    targa[16] = 24;
    QByteArray sgi(512, '\0');
    qToBigEndian<quint16>(474, sgi.data());
    sgi[3] = 1;
    qToBigEndian<quint16>(3, sgi.data() + 4);
    qToBigEndian<quint16>(65535, sgi.data() + 6);
    qToBigEndian<quint16>(65535, sgi.data() + 8);
    qToBigEndian<quint16>(3, sgi.data() + 10);
    // A code stream's size marker with its grid 100000 pixels square.
    QByteArray stream = QByteArray::fromHex("ff4fff510029000000000000000000000000");
    stream.resize(24 + 17, '\0');
    qToBigEndian<quint32>(100000, stream.data() + 8);
    qToBigEndian<quint32>(100000, stream.data() + 12);
    const QString files[] = {
        made("huge.sgi", sgi + QByteArray(64, '\0')),
        made("huge.j2k", stream + QByteArray(64, '\0')),
        made("huge.tga", targa + QByteArray(64, '\0')),
        made("huge.psd", layered(QSize(30000, 30000), QByteArray(), QByteArray(64, '\0'))),
    };
    for (const QString& file : files) {
        SCOPED_TRACE(file.toStdString());
        const long before = peakKilobytes();
        for (const QString& text : {appErrorOf([&] { PictureFile::probe(file); }), appErrorOf([&] {
                                        PictureFile::load(file, QSize(160, 120));
                                    })}) {
            EXPECT_TRUE(
                text.startsWith("The picture " + file + " cannot be used: The picture has "))
                << text.toStdString();
            EXPECT_TRUE(text.contains("pictures of more than 200 megapixels are refused"));
        }
        EXPECT_LT(peakKilobytes() - before, 64 * 1024) << "kilobytes more at the peak";
    }
}

TEST_F(ForeignPictureTest, CutOffAndForgedFilesAreRefusedWithTheFilesNameAndWhy) {
    const QString incomplete = " is incomplete: the file ends before the picture does.";
    for (const char* name : {"cut.tga", "cut.pcx", "cut.psd", "cut.sgi", "cut.j2k", "cut.jp2"}) {
        SCOPED_TRACE(name);
        const QString file = made(name, {"-compress", "None"}, QSize(64, 48));
        QFile cut(file);
        ASSERT_TRUE(cut.open(QIODevice::ReadWrite));
        ASSERT_TRUE(cut.resize(cut.size() * 3 / 4));
        cut.close();
        EXPECT_EQ(appErrorOf([&] { PictureFile::probe(file); }),
                  "The picture " + file + incomplete);
        EXPECT_EQ(appErrorOf([&] { PictureFile::load(file); }), "The picture " + file + incomplete);
    }
    // A layer section claiming a thousand layers and holding none (which
    // ImageMagick refuses) is passed over to the merged picture, planes of
    // red, green and blue one after the other; one longer than the file is
    // cut off.
    QByteArray layers(6, '\0');
    qToBigEndian<quint32>(2, layers.data());
    qToBigEndian<qint16>(1000, layers.data() + 4);
    const QByteArray pixels("\x10\x20\x30\x40\x50\x60", 6);
    const QImage merged =
        PictureFile::load(made("forged.psd", layered(QSize(2, 1), layers, pixels)));
    ASSERT_EQ(merged.size(), QSize(2, 1));
    EXPECT_EQ(QColor(merged.pixel(0, 0)), QColor(0x10, 0x30, 0x50));
    EXPECT_EQ(QColor(merged.pixel(1, 0)), QColor(0x20, 0x40, 0x60));
    QByteArray endless = layered(QSize(2, 1), layers, pixels);
    qToBigEndian<quint32>(0x7fffffff, endless.data() + 34);
    const QString cut = made("endless.psd", endless);
    EXPECT_EQ(appErrorOf([&] { PictureFile::load(cut); }), "The picture " + cut + incomplete);
}
