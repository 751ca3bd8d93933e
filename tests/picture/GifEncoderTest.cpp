#include "AppError.h"
#include "GifReader.h"
#include "PictureTestSupport.h"
#include "cDIBSection.h"
#include "cDIBSectionSave.h"
#include "cPalette.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {
class GifEncoderTest : public ::testing::Test {
protected:
    QString path(const QString& name) const { return m_folder.filePath(name); }

    // Writes the picture and checks that giflib, ImageMagick and Qt all
    // decode it to exactly the colours of our palette-mapped picture.
    void expectEveryDecoderAgrees(const QImage& indexed, const GifOptions& options = {}) {
        const QString file = path("agree.gif");
        cDIBSectionSave::Save(file, indexed, options);
        const QByteArray expected = rgbBytes(indexed);

        const GifFile ours = readGif(readAll(file));
        ASSERT_TRUE(ours.error.isEmpty()) << ours.error.toStdString();

        const ToolRun strict = runTool("gifbuild", {"-d", file});
        EXPECT_EQ(strict.exitCode, 0) << strict.err.toStdString();
        const ToolRun text = runTool("giftext", {file});
        EXPECT_EQ(text.exitCode, 0) << text.err.toStdString();

        const ToolRun giflib = runTool("gif2rgb", {"-1", "-o", path("giflib.rgb"), file});
        ASSERT_EQ(giflib.exitCode, 0) << giflib.err.toStdString();
        EXPECT_TRUE(readAll(path("giflib.rgb")) == expected) << "gif2rgb differs";

        const ToolRun magick = runTool("convert", {file, "-depth", "8", "rgb:-"});
        ASSERT_EQ(magick.exitCode, 0) << magick.err.toStdString();
        EXPECT_TRUE(magick.out == expected) << "ImageMagick differs";

        const QImage qt(file);
        ASSERT_FALSE(qt.isNull());
        EXPECT_TRUE(rgbBytes(qt.convertToFormat(QImage::Format_RGB32)) == expected) << "Qt differs";
    }

    QTemporaryDir m_folder;
};

QByteArray bytesOf(std::initializer_list<int> values) {
    QByteArray bytes;
    for (int value : values)
        bytes.append(static_cast<char>(value));
    return bytes;
}
} // namespace

TEST_F(GifEncoderTest, TwoColourPictureUsesOneBitAndMinimumCodeSizeTwo) {
    const QImage picture = noisePicture(37, 11, 2, 1);
    const QByteArray bytes = cDIBSectionSave::Encode(picture);
    // Signature, 37 x 11, global table of 2 entries, background 0, aspect 0.
    EXPECT_EQ(bytes.left(13), QByteArray("GIF89a") + bytesOf({37, 0, 11, 0, 0xF0, 0, 0}));
    const GifFile gif = readGif(bytes);
    ASSERT_TRUE(gif.error.isEmpty()) << gif.error.toStdString();
    EXPECT_EQ(gif.colourTable, picture.colorTable());
    EXPECT_EQ(gif.minimumCodeSize, 2);
    EXPECT_EQ(bytes.at(13 + 6), ',') << "the image follows the two-entry table";
    EXPECT_TRUE(gif.trailerFollowsTerminator);
    EXPECT_TRUE(bytes.endsWith(";"));
    expectEveryDecoderAgrees(picture);
}

TEST_F(GifEncoderTest, BitDepthIsTheSmallestThatHoldsThePalette) {
    const std::pair<int, int> cases[] = {{1, 1}, {2, 1},  {3, 2},  {4, 2},   {5, 3},
                                         {9, 4}, {16, 4}, {17, 5}, {129, 8}, {256, 8}};
    for (auto [colours, bits] : cases) {
        const QImage picture = noisePicture(20, 20, colours, colours);
        const GifFile gif = readGif(cDIBSectionSave::Encode(picture));
        ASSERT_TRUE(gif.error.isEmpty()) << colours << ": " << gif.error.toStdString();
        EXPECT_EQ(gif.packed, 0xF0 | (bits - 1)) << colours << " colours";
        EXPECT_EQ(gif.minimumCodeSize, bits == 1 ? 2 : bits);
        // The table is padded with black up to 2^bits entries.
        ASSERT_EQ(gif.colourTable.size(), 1 << bits);
        EXPECT_EQ(gif.colourTable.mid(0, colours), picture.colorTable());
        for (qsizetype i = colours; i < gif.colourTable.size(); ++i)
            EXPECT_EQ(gif.colourTable[i], qRgb(0, 0, 0));
        EXPECT_TRUE(gif.pixels ==
                    std::vector<std::uint8_t>(picture.constBits(), picture.constBits() + 400));
    }
}

TEST_F(GifEncoderTest, FullTableIsClearedAtCode511AndNoCodeIsWiderThanNineBits) {
    for (int colours : {2, 4, 16, 256}) {
        const QImage picture = noisePicture(300, 200, colours, 5);
        const GifFile gif = readGif(cDIBSectionSave::Encode(picture));
        ASSERT_TRUE(gif.error.isEmpty()) << colours << ": " << gif.error.toStdString();
        EXPECT_LE(gif.widestCode, 9) << colours << " colours";
        EXPECT_EQ(gif.widestCode, 9) << "the table grows to 9-bit codes before it is cleared";
        // Besides the opening one, every clear code comes exactly when the
        // next free code reaches 511 (the reader refuses to grow past it).
        EXPECT_GT(gif.clearsWithFullTable, 10) << colours << " colours";
        EXPECT_EQ(gif.clearCodes, gif.clearsWithFullTable + 1);
        std::vector<std::uint8_t> expected;
        for (int y = 0; y < picture.height(); ++y)
            expected.insert(expected.end(), picture.constScanLine(y),
                            picture.constScanLine(y) + picture.width());
        EXPECT_TRUE(gif.pixels == expected) << colours << " colours";
    }
    expectEveryDecoderAgrees(noisePicture(300, 200, 256, 5));
    expectEveryDecoderAgrees(noisePicture(300, 200, 3, 6));
}

TEST_F(GifEncoderTest, DataEndingOnABlockBoundaryIsFollowedOnlyByTheTerminator) {
    // Search the sizes of a noise picture for one whose code stream fills its
    // last sub-block exactly.
    for (int width = 1; width < 400; ++width) {
        const QImage picture = noisePicture(width, 7, 256, 3);
        const QByteArray bytes = cDIBSectionSave::Encode(picture);
        const GifFile gif = readGif(bytes);
        ASSERT_TRUE(gif.error.isEmpty()) << gif.error.toStdString();
        for (size_t i = 0; i + 1 < gif.blockSizes.size(); ++i)
            ASSERT_EQ(gif.blockSizes[i], 255) << "only the last sub-block may be short";
        if (gif.blockSizes.back() != 255)
            continue;
        // A full block (count 255 and its bytes), then the terminator and the trailer.
        EXPECT_EQ(bytes.right(258).front(), '\xFF');
        EXPECT_TRUE(bytes.endsWith(QByteArray("\0;", 2)));
        EXPECT_TRUE(gif.trailerFollowsTerminator);
        expectEveryDecoderAgrees(picture);
        return;
    }
    FAIL() << "no width gave data ending on a block boundary";
}

TEST_F(GifEncoderTest, InterlacedPictureDecodesToTheSamePicture) {
    for (int height : {1, 2, 3, 5, 8, 9, 17, 30}) {
        const QImage picture = noisePicture(13, height, 16, height);
        GifOptions options;
        options.interlaced = true;
        const GifFile gif = readGif(cDIBSectionSave::Encode(picture, options));
        ASSERT_TRUE(gif.error.isEmpty()) << gif.error.toStdString();
        EXPECT_EQ(gif.imagePacked, 0x40);
        std::vector<std::uint8_t> expected;
        for (int y = 0; y < height; ++y)
            expected.insert(expected.end(), picture.constScanLine(y),
                            picture.constScanLine(y) + 13);
        EXPECT_TRUE(gif.pixels == expected) << height << " rows";
    }
    GifOptions options;
    options.interlaced = true;
    expectEveryDecoderAgrees(noisePicture(61, 43, 256, 9), options);
}

TEST_F(GifEncoderTest, ExtensionsCarryTransparencyCommentAndText) {
    const QImage picture = noisePicture(40, 30, 5, 2);
    GifOptions options;
    options.transparentColour = qRgb(250, 250, 3);
    options.comment = QString(300, 'c');
    GifPlainText text;
    text.left = 2;
    text.top = 3;
    text.columns = 10;
    text.rows = 2;
    text.cellWidth = 4;
    text.cellHeight = 9;
    text.foreground = picture.colorTable().at(3);
    text.background = qRgb(0, 255, 0);
    text.text = "Hello";
    options.plainText = text;
    const QByteArray bytes = cDIBSectionSave::Encode(picture, options);
    const GifFile gif = readGif(bytes);
    ASSERT_TRUE(gif.error.isEmpty()) << gif.error.toStdString();
    ASSERT_EQ(gif.extensions.size(), 3u);

    cPalette palette;
    for (QRgb colour : picture.colorTable())
        palette.Add(qRed(colour), qGreen(colour), qBlue(colour));
    const int transparent = palette.ClosestIndex(250, 250, 3);
    EXPECT_EQ(gif.extensions[0].label, 0xF9);
    EXPECT_EQ(gif.extensions[0].header, bytesOf({5, 0, 0, transparent}));
    EXPECT_TRUE(gif.extensions[0].data.isEmpty());

    EXPECT_EQ(gif.extensions[1].label, 0xFE);
    EXPECT_EQ(gif.extensions[1].data,
              QByteArray(cDIBSectionSave::CreditLine) + " " + QByteArray(300, 'c'));
    // A 320-byte comment is split into sub-blocks of 255 and 65.
    const QByteArray comment = QByteArray(cDIBSectionSave::CreditLine) + " " + QByteArray(300, 'c');
    EXPECT_TRUE(bytes.contains(QByteArray("\x21\xFE\xFF", 3) + comment.left(255) +
                               char(comment.size() - 255) + comment.mid(255) + '\0'));

    EXPECT_EQ(gif.extensions[2].label, 0x01);
    EXPECT_EQ(gif.extensions[2].header,
              bytesOf({2, 0, 3, 0, 40, 0, 18, 0, 4, 9, 3, palette.ClosestIndex(0, 255, 0)}));
    EXPECT_EQ(gif.extensions[2].data, "Hello");

    const QString file = path("extensions.gif");
    cDIBSectionSave::Save(file, picture, options);
    const ToolRun giflib = runTool("giftext", {file});
    ASSERT_EQ(giflib.exitCode, 0) << giflib.err.toStdString();
    const ToolRun comments = runTool("identify", {"-format", "%c", file});
    EXPECT_EQ(comments.out.trimmed(), comment);
    const ToolRun strict = runTool("gifbuild", {"-d", file});
    EXPECT_EQ(strict.exitCode, 0) << strict.err.toStdString();
    EXPECT_TRUE(strict.out.contains("transparent")) << strict.out.toStdString();
}

TEST_F(GifEncoderTest, SaveStdPictureWritesThePaletteMappedPicture) {
    const QImage photo = plasmaPicture();
    for (bool optimized : {true, false})
        for (bool diffusion : {true, false}) {
            GifOptions options;
            options.optimizedPalette = optimized;
            options.errorDiffusion = diffusion;
            const QString file = path("photo.gif");
            EXPECT_EQ(cDIBSectionSave::SaveStdPicture(photo, file, options), file);
            // The same steps by hand give the picture every decoder must show.
            cDIBSection dib;
            ASSERT_TRUE(dib.LoadPictureBlt(photo));
            cPalette palette;
            optimized ? palette.CreateOptimal(dib) : palette.CreateStandard();
            const QImage indexed = palette.ApplyPalette(dib, diffusion);
            EXPECT_TRUE(rgbBytes(indexed) == rgbBytes(dib.image()));
            EXPECT_TRUE(readAll(file) == cDIBSectionSave::Encode(indexed, options));
            expectEveryDecoderAgrees(indexed, options);
        }
}

TEST_F(GifEncoderTest, SaveStdPictureCanWriteUnderATemporaryName) {
    const QString file = path("slide.gif");
    QFile stale(path("TMPslide.gif"));
    ASSERT_TRUE(stale.open(QIODevice::WriteOnly));
    stale.write(QByteArray(100000, 'x'));
    stale.close();
    const QString written = cDIBSectionSave::SaveStdPicture(plasmaPicture(), file, {}, true);
    EXPECT_EQ(written, path("TMPslide.gif"));
    EXPECT_FALSE(QFile::exists(file));
    EXPECT_TRUE(readGif(readAll(written)).error.isEmpty());
}

TEST_F(GifEncoderTest, FailuresRaiseTheEncoderErrors) {
    const auto expectError = [](auto action, const QString& text) {
        try {
            action();
            ADD_FAILURE() << "expected " << text.toStdString();
        } catch (const AppError& error) {
            EXPECT_EQ(error.source(), "cDIBSectionSave.Save");
            EXPECT_TRUE(error.description().startsWith(text)) << error.description().toStdString();
        }
    };
    expectError([] { cDIBSectionSave::SaveStdPicture(QImage(), "/tmp/never.gif"); },
                "Cannot Create DIBSection");
    expectError([] { cDIBSectionSave::Encode(QImage(4, 4, QImage::Format_Indexed8)); },
                "Cannot Create DIBSection");
    expectError([] { cDIBSectionSave::Encode(QImage(4, 4, QImage::Format_RGB32)); },
                "Cannot Create DIBSection");
    const QString unwritable = path("missing-folder/out.gif");
    expectError([&] { cDIBSectionSave::SaveStdPicture(plasmaPicture(), unwritable); },
                "PictureBoxToGif function failed");
    EXPECT_FALSE(QFile::exists(unwritable));
    GifOptions tooWide;
    tooWide.plainText = GifPlainText{0, 0, 300, 1, 255, 8, 0, 0, "x"};
    expectError([&] { cDIBSectionSave::Encode(noisePicture(2, 2, 2, 1), tooWide); },
                "The text grid does not fit");
}
