#include "GifReader.h"
#include "PhotoSamples.h"
#include "PictureTestSupport.h"

#include <QFile>
#include <QImageReader>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {
class ConvertImageCliTest : public ::testing::Test {
protected:
    QString path(const QString& name) const { return m_folder.filePath(name); }

    // The tool with settings of its own, in the test's folder.
    ToolRun cli(const QStringList& arguments) const {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("XDG_DATA_HOME", path("xdg"));
        return runTool(QStringLiteral(VELLUMO_BUILD_DIR) + "/vellumo-cli", arguments, env);
    }
    ToolRun convert(const QStringList& arguments) const {
        return cli(QStringList{"convert-image"} + arguments);
    }
    void setting(const QString& key, const QString& value) const {
        const ToolRun run = cli({"settings", "set", "preferences", key, value});
        ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    }
    // What ImageMagick's identify tells of a file in the given format ("%Q").
    static QByteArray identify(const QString& format, const QString& file) {
        const ToolRun run = runTool("identify", {"-format", format, file});
        EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
        return run.out;
    }
    // The palette's length, as ImageMagick's long description of the file tells it.
    static QByteArray paletteLength(const QString& file) {
        const ToolRun run = runTool("identify", {"-verbose", file});
        const QByteArray label = "Colormap entries: ";
        const qsizetype at = run.out.indexOf(label);
        return at < 0 ? QByteArray() : run.out.mid(at + label.size()).split('\n').first();
    }

    const QString m_input = QStringLiteral(VELLUMO_SOURCE_DIR) + "/tests/data/picture/plasma.png";
    QTemporaryDir m_folder;
};
} // namespace

TEST_F(ConvertImageCliTest, EveryFormatRoundTrips) {
    const std::pair<const char*, const char*> formats[] = {
        {"bmp", "BMP3"}, {"jpg", "JPEG"}, {"gif", "GIF"}, {"png", "PNG"}, {"wbmp", "WBMP"}};
    for (auto [extension, magickName] : formats) {
        const QString out = path(QString("plasma.") + extension);
        const ToolRun run = convert({m_input, out});
        ASSERT_EQ(run.exitCode, 0) << extension << ": " << run.err.toStdString();
        EXPECT_TRUE(run.err.isEmpty());
        const ToolRun magick = runTool("identify", {"-format", "%m %w %h", out});
        EXPECT_EQ(magick.out, QByteArray(magickName) + " 160 120") << magick.err.toStdString();
        // And back again through the program, from the format it wrote.
        const QString again = path(QString("again.") + extension + ".png");
        ASSERT_EQ(convert({out, again}).exitCode, 0);
        EXPECT_EQ(QImage(again).size(), QSize(160, 120));
    }
    // PNG and BMP are lossless both ways.
    ASSERT_EQ(convert({path("plasma.bmp"), path("back.png")}).exitCode, 0);
    EXPECT_EQ(QImage(path("back.png")).convertToFormat(QImage::Format_RGB32),
              QImage(m_input).convertToFormat(QImage::Format_RGB32));
}

TEST_F(ConvertImageCliTest, OptionsReachTheEncoders) {
    ASSERT_EQ(convert({m_input, path("q20.jpg"), "--quality", "20"}).exitCode, 0);
    ASSERT_EQ(convert({m_input, path("q95.jpg"), "--quality", "95"}).exitCode, 0);
    EXPECT_LT(readAll(path("q20.jpg")).size(), readAll(path("q95.jpg")).size());

    ASSERT_EQ(convert({m_input, path("picture.bin"), "--format", "gif", "--interlace",
                       "--transparent", "FF0000", "--no-dither", "--no-optimize"})
                  .exitCode,
              0);
    const GifFile gif = readGif(readAll(path("picture.bin")));
    ASSERT_TRUE(gif.error.isEmpty()) << gif.error.toStdString();
    EXPECT_EQ(gif.imagePacked, 0x40);
    ASSERT_EQ(gif.extensions.size(), 1u);
    EXPECT_EQ(gif.extensions[0].label, 0xF9);
    // In the standard palette pure red is entry 5 * 36 = 180.
    EXPECT_EQ(gif.extensions[0].header.at(3), char(180));
    EXPECT_EQ(gif.colourTable.value(180), qRgb(255, 0, 0));

    ASSERT_EQ(convert({m_input, path("r1.wbmp"), "--raster", "1"}).exitCode, 0);
    ASSERT_EQ(convert({m_input, path("r2.wbmp"), "--raster", "2"}).exitCode, 0);
    EXPECT_NE(readAll(path("r1.wbmp")), readAll(path("r2.wbmp")));
    // Header: type, fixed header, 160 in two bytes, 120 in one.
    EXPECT_EQ(readAll(path("r1.wbmp")).size(), 5 + 20 * 120);
}

TEST_F(ConvertImageCliTest, FailuresPrintOneLineAndExitNonZero) {
    QFile text(path("notes.png"));
    ASSERT_TRUE(text.open(QIODevice::WriteOnly));
    text.write("not a picture");
    text.close();
    const QList<QStringList> failures{
        {path("missing.png"), path("out.png")},
        {path("notes.png"), path("out.png")},
        {m_input, path("out.tiff")},
        {m_input, path("no/such/folder/out.png")},
    };
    for (const QStringList& arguments : failures) {
        const ToolRun run = convert(arguments);
        EXPECT_EQ(run.exitCode, 1) << arguments.join(' ').toStdString();
        EXPECT_TRUE(run.err.startsWith("vellumo-cli: convert-image: ")) << run.err.toStdString();
        EXPECT_EQ(run.err.trimmed().count('\n'), 0) << run.err.toStdString();
    }
    EXPECT_EQ(convert({m_input}).exitCode, 64);
    EXPECT_FALSE(QFile::exists(path("out.png")));
}

TEST_F(ConvertImageCliTest, ABadOptionIsNamedWithWhyInTheUsersLanguage) {
    const std::pair<QStringList, const char*> refusals[] = {
        {{"a.jpg", "--quality", "500"}, "--quality: 500 is not between 1 and 100"},
        {{"a.jpg", "--quality", "0"}, "--quality: 0 is not between 1 and 100"},
        {{"a.wbmp", "--raster", "4"}, "--raster: 4 is not between 1 and 3"},
        {{"a.gif", "--transparent", "red"}, "--transparent: red is not a colour as RRGGBB"},
        {{"a.gif", "--sharpen"}, "--sharpen is not an option of convert-image"},
        {{"a.gif", "--quality"}, "--quality needs a value"},
        {{"a.jpg", "--no-dither"}, "--no-dither does not apply to jpg pictures"},
        {{"a.bin", "--format", "png", "--quality", "50"},
         "--quality does not apply to png pictures"},
        {{"a.gif", "--raster", "2"}, "--raster does not apply to gif pictures"},
    };
    for (const auto& [arguments, why] : refusals) {
        const QString out = path(arguments[0]);
        const ToolRun run = convert(QStringList{m_input, out} + arguments.mid(1));
        EXPECT_EQ(run.exitCode, 64) << why;
        EXPECT_EQ(run.err.trimmed(), QByteArray("vellumo-cli: convert-image: ") + why);
        EXPECT_FALSE(QFile::exists(out)) << why;
    }
    setting("Language", "de-de");
    EXPECT_EQ(convert({m_input, path("a.jpg"), "--quality", "500"}).err.trimmed(),
              "vellumo-cli: convert-image: --quality: 500 liegt nicht zwischen 1 und 100");
}

TEST_F(ConvertImageCliTest, OptionsLeftOutAreTakenFromTheSettings) {
    setting("JpgQuality", "37");
    ASSERT_EQ(convert({m_input, path("settings.jpg")}).exitCode, 0);
    ASSERT_EQ(convert({m_input, path("given.jpg"), "--quality", "81"}).exitCode, 0);
    EXPECT_EQ(identify("%Q", path("settings.jpg")), "37");
    EXPECT_EQ(identify("%Q", path("given.jpg")), "81");

    // Two colours: an optimized palette has two entries, the standard one 256.
    QImage halves(40, 20, QImage::Format_RGB32);
    halves.fill(Qt::red);
    for (int y = 0; y < 20; ++y)
        for (int x = 20; x < 40; ++x)
            halves.setPixel(x, y, qRgb(0, 0, 255));
    ASSERT_TRUE(halves.save(path("halves.png")));
    ASSERT_EQ(convert({path("halves.png"), path("optimized.gif")}).exitCode, 0);
    setting("GifOptimizedPalette", "0");
    ASSERT_EQ(convert({path("halves.png"), path("standard.gif")}).exitCode, 0);
    ASSERT_EQ(convert({path("halves.png"), path("again.gif"), "--optimize"}).exitCode, 0);
    EXPECT_EQ(paletteLength(path("optimized.gif")), "2");
    EXPECT_EQ(paletteLength(path("standard.gif")), "256");
    EXPECT_EQ(paletteLength(path("again.gif")), "2");

    // Dithering a photograph into the standard palette changes its pixels.
    ASSERT_EQ(convert({m_input, path("dithered.gif"), "--dither"}).exitCode, 0);
    ASSERT_EQ(convert({m_input, path("plain.gif"), "--no-dither"}).exitCode, 0);
    setting("GifErrorDiffusion", "0");
    ASSERT_EQ(convert({m_input, path("settings.gif")}).exitCode, 0);
    EXPECT_NE(readAll(path("dithered.gif")), readAll(path("plain.gif")));
    EXPECT_EQ(readAll(path("settings.gif")), readAll(path("plain.gif")));

    setting("WbmpRaster", "1");
    ASSERT_EQ(convert({m_input, path("settings.wbmp")}).exitCode, 0);
    ASSERT_EQ(convert({m_input, path("threshold.wbmp"), "--raster", "1"}).exitCode, 0);
    ASSERT_EQ(convert({m_input, path("diffused.wbmp"), "--raster", "3"}).exitCode, 0);
    EXPECT_EQ(readAll(path("settings.wbmp")), readAll(path("threshold.wbmp")));
    EXPECT_NE(readAll(path("settings.wbmp")), readAll(path("diffused.wbmp")));
}

TEST_F(ConvertImageCliTest, PicturesOnlyThePictureLibraryReadsConvert) {
    // A Photoshop picture named as a PNG, by ImageMagick, back out as a PNG.
    ASSERT_EQ(runTool("convert", {m_input, "psd:" + path("layers.png")}).exitCode, 0);
    const ToolRun run = convert({path("layers.png"), path("out.png")});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_EQ(QImage(path("out.png")).convertToFormat(QImage::Format_RGB32),
              QImage(m_input).convertToFormat(QImage::Format_RGB32));
}

TEST_F(ConvertImageCliTest, APhonePhotoConvertsWhole) {
    // 48 megapixels, as phones take them: 192 MB decoded, beyond Qt's default allowance.
    ASSERT_EQ(PhotoSamples::gradientJpeg(path("photo.jpg"), QSize(8000, 6000)), QString());
    const ToolRun run = convert({path("photo.jpg"), path("copy.jpg"), "--quality", "80"});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_TRUE(run.err.isEmpty()) << run.err.toStdString();
    const ToolRun magick = runTool("identify", {"-format", "%m %w %h", path("copy.jpg")});
    EXPECT_EQ(magick.out, "JPEG 8000 6000") << magick.err.toStdString();
    QImageReader reader(path("copy.jpg"));
    reader.setScaledSize(QSize(80, 60));
    const QImage copy = reader.read();
    ASSERT_EQ(copy.size(), QSize(80, 60)) << reader.errorString().toStdString();
    for (int y : {0, 30, 59})
        EXPECT_PRED2(PhotoSamples::near, copy.pixelColor(40, y), PhotoSamples::gradientAt(y / 59.0))
            << "row " << y;
}

TEST_F(ConvertImageCliTest, APictureBeyondTheLimitIsRefusedWithTheLimit) {
    PhotoSamples::pngClaiming(path("huge.png"), QSize(20000, 10001));
    const ToolRun run = convert({path("huge.png"), path("out.png")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(QString::fromUtf8(run.err).trimmed(),
              "vellumo-cli: convert-image: The picture " + path("huge.png") +
                  " cannot be used: The picture has 20000 x 10001 pixels; pictures of more "
                  "than 200 megapixels are refused.");
    EXPECT_FALSE(QFile::exists(path("out.png")));
}
