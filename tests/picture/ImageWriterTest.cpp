#include "ImageWriter.h"
#include "AppError.h"
#include "GifReader.h"
#include "PictureTestSupport.h"
#include "TempDataHome.h"
#include "WbmpWriter.h"
#include "cPalette.h"
#include "clsPropertiesXML.h"

#include <QFile>
#include <QSet>
#include <gtest/gtest.h>

namespace {
class ImageWriterTest : public TempDataHome {
protected:
    QString path(const QString& name) const { return dataFile(name); }

    QString writeAs(int format, const QImage& picture = plasmaPicture(),
                    const ImageWriter::Settings& settings = {}) {
        const QString file = path("out" + ImageWriter::extension(format));
        ImageWriter::write(picture, format, file, settings);
        return file;
    }
};

// Black left half, white right half, and a grey ramp in the bottom row.
QImage halves() {
    QImage picture(19, 5, QImage::Format_RGB32);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 19; ++x)
            picture.setPixel(x, y, x < 9 ? qRgb(0, 0, 0) : qRgb(255, 255, 255));
    for (int x = 0; x < 19; ++x)
        picture.setPixel(x, 4, qRgb(x * 14, x * 14, x * 14));
    return picture;
}
} // namespace

TEST_F(ImageWriterTest, FormatNamesMapToTheFormatIndex) {
    EXPECT_EQ(ImageWriter::formatIndex("bmp"), ImageWriter::Bmp);
    EXPECT_EQ(ImageWriter::formatIndex("jpg"), 1);
    EXPECT_EQ(ImageWriter::formatIndex("JPEG"), 1);
    EXPECT_EQ(ImageWriter::formatIndex(".gif"), 2);
    EXPECT_EQ(ImageWriter::formatIndex("png"), 3);
    EXPECT_EQ(ImageWriter::formatIndex("wbmp"), 4);
    EXPECT_EQ(ImageWriter::formatIndex("tif"), -1);
    EXPECT_EQ(ImageWriter::formatIndex(""), -1);
    for (int format = 0; format <= 4; ++format)
        EXPECT_EQ(ImageWriter::formatIndex(ImageWriter::extension(format)), format);
    EXPECT_EQ(ImageWriter::extension(5), "");
}

TEST_F(ImageWriterTest, SettingsComeFromThePreferences) {
    clsPropertiesXML shipped;
    ASSERT_TRUE(shipped.Initialize(programFile("vellumo.xml"), "vellumo"));
    ImageWriter::Settings settings = ImageWriter::readSettings(shipped);
    EXPECT_EQ(settings.jpgQuality, 90);
    EXPECT_TRUE(settings.gif.optimizedPalette);
    EXPECT_TRUE(settings.gif.errorDiffusion);
    EXPECT_EQ(settings.wbmpRaster, WbmpWriter::ErrorDiffusion);
    EXPECT_EQ(ImageWriter::formatFromSettings(shipped), ImageWriter::Jpeg);

    clsPropertiesXML changed;
    changed.setXmlFileName(path("changed.xml"));
    changed.SetProp("preferences", "JpgQuality", "35");
    changed.SetProp("preferences", "GifOptimizedPalette", "0");
    changed.SetProp("preferences", "GifErrorDiffusion", "true"); // only "1" is on
    changed.SetProp("preferences", "WbmpRaster", "2");
    changed.SetProp("preferences", "ImageFormat", "wbmp");
    settings = ImageWriter::readSettings(changed);
    EXPECT_EQ(settings.jpgQuality, 35);
    EXPECT_FALSE(settings.gif.optimizedPalette);
    EXPECT_FALSE(settings.gif.errorDiffusion);
    EXPECT_EQ(settings.wbmpRaster, WbmpWriter::OrderedDither);
    EXPECT_EQ(ImageWriter::formatFromSettings(changed), ImageWriter::Wbmp);

    changed.SetProp("preferences", "JpgQuality", "250");
    changed.SetProp("preferences", "WbmpRaster", "9");
    changed.SetProp("preferences", "ImageFormat", "tiff");
    settings = ImageWriter::readSettings(changed);
    EXPECT_EQ(settings.jpgQuality, 90);
    EXPECT_EQ(settings.wbmpRaster, WbmpWriter::ErrorDiffusion);
    EXPECT_EQ(ImageWriter::formatFromSettings(changed), ImageWriter::Jpeg);
}

TEST_F(ImageWriterTest, LosslessFormatsKeepEveryPixelOverWhite) {
    QImage picture = plasmaPicture().convertToFormat(QImage::Format_ARGB32);
    picture.setPixel(0, 0, qRgba(0, 0, 0, 0)); // transparent: comes out white
    for (int format : {ImageWriter::Bmp, ImageWriter::Png}) {
        const QImage back(writeAs(format, picture));
        ASSERT_EQ(back.size(), picture.size());
        EXPECT_EQ(back.pixel(0, 0), qRgb(255, 255, 255));
        for (int y = 0; y < picture.height(); ++y)
            for (int x = (y == 0 ? 1 : 0); x < picture.width(); ++x)
                ASSERT_EQ(back.pixel(x, y), picture.pixel(x, y))
                    << format << " at " << x << "," << y;
    }
}

TEST_F(ImageWriterTest, JpegQualityChangesTheFile) {
    ImageWriter::Settings low, high;
    low.jpgQuality = 10;
    high.jpgQuality = 95;
    const QByteArray small = readAll(writeAs(ImageWriter::Jpeg, plasmaPicture(), low));
    const QByteArray large = readAll(writeAs(ImageWriter::Jpeg, plasmaPicture(), high));
    EXPECT_LT(small.size() * 2, large.size());
    EXPECT_TRUE(small.startsWith("\xFF\xD8"));
    const ToolRun magick = runTool("identify", {"-format", "%w %h %Q", path("out.jpg")});
    EXPECT_EQ(magick.out, "160 120 95");
}

TEST_F(ImageWriterTest, GifWithoutOptimisedPaletteUsesTheStandardPalette) {
    ImageWriter::Settings settings;
    settings.gif.optimizedPalette = false;
    const GifFile gif = readGif(readAll(writeAs(ImageWriter::Gif, plasmaPicture(), settings)));
    ASSERT_TRUE(gif.error.isEmpty()) << gif.error.toStdString();
    cPalette standard;
    standard.CreateStandard();
    EXPECT_EQ(gif.colourTable, standard.colorTable());

    settings.gif.optimizedPalette = true;
    const GifFile optimal = readGif(readAll(writeAs(ImageWriter::Gif, plasmaPicture(), settings)));
    ASSERT_TRUE(optimal.error.isEmpty());
    EXPECT_NE(optimal.colourTable, standard.colorTable());
    EXPECT_EQ(QImage(path("out.gif")).size(), QSize(160, 120));
}

TEST_F(ImageWriterTest, WbmpHeaderNumbersUseSevenBitGroups) {
    EXPECT_EQ(WbmpWriter::multiByteInteger(0), QByteArray(1, '\0'));
    EXPECT_EQ(WbmpWriter::multiByteInteger(127), "\x7F");
    EXPECT_EQ(WbmpWriter::multiByteInteger(128), QByteArray("\x81\x00", 2));
    EXPECT_EQ(WbmpWriter::multiByteInteger(300), "\x82\x2C");
    EXPECT_EQ(WbmpWriter::multiByteInteger(16384), QByteArray("\x81\x80\x00", 3));
}

TEST_F(ImageWriterTest, WbmpThresholdRasterWritesTheExactBits) {
    ImageWriter::Settings settings;
    settings.wbmpRaster = WbmpWriter::Threshold;
    const QByteArray bytes = readAll(writeAs(ImageWriter::Wbmp, halves(), settings));
    // Type 0, fixed header 0, 19 x 5, three bytes a row padded with zeros;
    // black is 0.
    QByteArray expected("\x00\x00\x13\x05", 4);
    for (int y = 0; y < 4; ++y)
        expected += QByteArray("\x00\x7F\xE0", 3);
    // The ramp 0, 14, ... 252: white from 140 (x = 10) on.
    expected += QByteArray("\x00\x3F\xE0", 3);
    EXPECT_EQ(bytes.toHex(), expected.toHex());
}

TEST_F(ImageWriterTest, EveryWbmpRasterReadsBackAtTheRightSize) {
    QList<QByteArray> files;
    for (auto raster :
         {WbmpWriter::Threshold, WbmpWriter::OrderedDither, WbmpWriter::ErrorDiffusion}) {
        ImageWriter::Settings settings;
        settings.wbmpRaster = raster;
        const QString file = writeAs(ImageWriter::Wbmp, plasmaPicture(), settings);
        files.append(readAll(file));
        const ToolRun magick = runTool("identify", {"-format", "%m %w %h", file});
        EXPECT_EQ(magick.out, "WBMP 160 120") << magick.err.toStdString();
        // Both dithers keep the average brightness of the photograph; a
        // threshold does not have to.
        const ToolRun mean = runTool("convert", {file, "-format", "%[fx:mean]", "info:"});
        const ToolRun original =
            runTool("convert", {QString(VELLUMO_SOURCE_DIR) + "/tests/data/picture/plasma.png",
                                "-colorspace", "gray", "-format", "%[fx:mean]", "info:"});
        if (raster != WbmpWriter::Threshold) {
            EXPECT_NEAR(mean.out.toDouble(), original.out.toDouble(), 0.03) << raster;
        }
        const QImage qt(file);
        EXPECT_EQ(qt.size(), QSize(160, 120));
    }
    EXPECT_NE(files[0], files[1]);
    EXPECT_NE(files[1], files[2]);
}

TEST_F(ImageWriterTest, EmptyHugeAndUnknownPicturesAreRefused) {
    const QString file = path("refused.png");
    EXPECT_EQ(appErrorOf([&] { ImageWriter::write(QImage(), ImageWriter::Png, file, {}); }),
              "The picture is empty: it has no pixels.");
    // 20000 x 10001 one-bit pixels are only 25 MB but 200.02 megapixels.
    const QImage huge(20000, 10001, QImage::Format_Mono);
    ASSERT_FALSE(huge.isNull());
    for (int format = 0; format <= 4; ++format)
        EXPECT_TRUE(appErrorOf([&] {
                        ImageWriter::write(huge, format, file, {});
                    }).startsWith("The picture has 20000 x 10001 pixels"));
    EXPECT_EQ(appErrorOf([&] { ImageWriter::write(halves(), 7, file, {}); }),
              "Unknown picture format 7.");
    EXPECT_TRUE(appErrorOf([&] {
                    ImageWriter::write(halves(), ImageWriter::Png, path("no/such/dir/x.png"), {});
                }).startsWith("Cannot write the picture"));
    EXPECT_FALSE(QFile::exists(file));
}
