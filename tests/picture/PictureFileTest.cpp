#include "PictureFile.h"
#include "PhotoSamples.h"
#include "PictureTestSupport.h"
#include "TempDataHome.h"

#include <QFile>
#include <gtest/gtest.h>

namespace {
class PictureFileTest : public TempDataHome {
protected:
    QString path(const QString& name) const { return dataFile(name); }
    static QString undecodable(const QString& file) {
        return "The picture " + file +
               " cannot be decoded: the file is damaged or not a picture the program reads.";
    }
    const QString m_plasma = QStringLiteral(VELLUMO_SOURCE_DIR) + "/tests/data/picture/plasma.png";
};
} // namespace

TEST_F(PictureFileTest, DrawnPicturesAreDecodedAtTheirSizeButNeverAboveTheirOwn) {
    EXPECT_EQ(PictureFile::load(m_plasma).size(), QSize(160, 120));
    EXPECT_EQ(PictureFile::load(m_plasma, QSize(40, 30)).size(), QSize(40, 30));
    EXPECT_EQ(PictureFile::load(m_plasma, QSize(16, 90)).size(), QSize(16, 90)) << "stretched";
    EXPECT_EQ(PictureFile::load(m_plasma, QSize(640, 60)).size(), QSize(160, 60));
    EXPECT_EQ(PictureFile::load(m_plasma, QSize(0, 0)).size(), QSize(1, 1));

    ASSERT_EQ(PhotoSamples::gradientJpeg(path("photo.jpg"), QSize(1600, 1200)), QString());
    const QImage small = PictureFile::load(path("photo.jpg"), QSize(30, 60));
    ASSERT_EQ(small.size(), QSize(30, 60));
    for (int y : {0, 30, 59})
        EXPECT_PRED2(PhotoSamples::near, small.pixelColor(15, y),
                     PhotoSamples::gradientAt(y / 59.0))
            << "row " << y;
}

TEST_F(PictureFileTest, WhatCannotBeDecodedIsRefusedBeforeItIsUsed) {
    PhotoSamples::randomBytes(path("noise.jpg"), 4096);
    writeFile(path("empty.png"), QByteArray());
    writeFile(path("text.png"), "this is not a picture");
    PhotoSamples::truncatedJpegHeader(path("cut.jpg"));
    // A sound header whose pixels are not there: only decoding tells.
    PhotoSamples::pngClaiming(path("hollow.png"), QSize(300, 200));
    for (const QString& name :
         QStringList{"noise.jpg", "empty.png", "text.png", "cut.jpg", "hollow.png"}) {
        EXPECT_EQ(appErrorOf([&] { PictureFile::probe(path(name)); }), undecodable(path(name)));
        EXPECT_EQ(appErrorOf([&] { PictureFile::load(path(name), QSize(160, 120)); }),
                  undecodable(path(name)));
    }
    EXPECT_EQ(appErrorOf([&] { PictureFile::probe(path("missing.png")); }),
              "Cannot read the picture " + path("missing.png") + ": File not found");
    EXPECT_EQ(appErrorOf([&] { PictureFile::probe(m_plasma); }), QString());
}

TEST_F(PictureFileTest, PicturesBeyondTheLimitAreRefusedFromTheirHeader) {
    PhotoSamples::pngClaiming(path("huge.png"), QSize(20000, 10001));
    const QString tooLarge = "The picture " + path("huge.png") +
                             " cannot be used: The picture has 20000 x 10001 pixels; pictures of "
                             "more than 200 megapixels are refused.";
    EXPECT_EQ(appErrorOf([&] { PictureFile::probe(path("huge.png")); }), tooLarge);
    EXPECT_EQ(appErrorOf([&] { PictureFile::load(path("huge.png"), QSize(160, 120)); }), tooLarge)
        << "however small it is drawn";
    // A GIF header announcing 65535 x 65535 pixels and no data at all.
    QByteArray gif("GIF89a\xFF\xFF\xFF\xFF\x80\x00\x00", 13);
    gif += QByteArray(6, '\0');
    gif += QByteArray("\x2C\x00\x00\x00\x00\xFF\xFF\xFF\xFF\x00\x08\x00\x3B", 13);
    writeFile(path("huge.gif"), gif);
    EXPECT_TRUE(appErrorOf([&] { PictureFile::load(path("huge.gif")); })
                    .startsWith("The picture " + path("huge.gif") +
                                " cannot be used: The picture has 65535 x 65535 pixels"));
}
