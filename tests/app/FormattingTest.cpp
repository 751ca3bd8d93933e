#include "LocaleInfo.h"
#include "QtPrinters.h"
#include "VbFormat.h"

#include <gtest/gtest.h>

TEST(VbFormatTest, PatternsTheProgramUses) {
    EXPECT_EQ(VbFormat::format(3.0, "#0.0", "."), "3.0");
    EXPECT_EQ(VbFormat::format(0.25, "#0.0", ","), "0,3") << "shown values round half up";
    EXPECT_EQ(VbFormat::format(12345.678, "######.00", "."), "12345.68");
    EXPECT_EQ(VbFormat::format(0.5, "######.00", "."), ".50");
    EXPECT_EQ(VbFormat::format(2.5, "0.000s", "."), "2.500s");
    EXPECT_EQ(VbFormat::format(7, "000", "."), "007");
    EXPECT_EQ(VbFormat::format(1234, "000", "."), "1234");
    EXPECT_EQ(VbFormat::format(-1.25, "#0.0", "."), "-1.3");
    EXPECT_EQ(VbFormat::format(-0.01, "#0.0", "."), "0.0");
    EXPECT_EQ(VbFormat::format(1.5, "#0.0#", "."), "1.5");
    EXPECT_EQ(VbFormat::format(1.25, "#0.0#", "."), "1.25");

    VbFormat::setDecimalSeparator(",");
    EXPECT_EQ(VbFormat::format(3.25, "#0.0"), "3,3");
    VbFormat::setDecimalSeparator(".");
}

TEST(VbFormatTest, IntegerConversionRoundsHalfToEven) {
    EXPECT_EQ(VbFormat::toInteger("2.5"), 2);
    EXPECT_EQ(VbFormat::toInteger("3.5"), 4);
    EXPECT_EQ(VbFormat::toInteger("-2.5"), -2);
    EXPECT_EQ(VbFormat::toInteger(" 2.51 "), 3);
    bool ok = true;
    EXPECT_EQ(VbFormat::toInteger("abc", &ok), 0);
    EXPECT_FALSE(ok);
    EXPECT_EQ(VbFormat::toInteger("1e300", &ok), 0) << "too large to be a whole number";
    EXPECT_FALSE(ok);
}

TEST(LocaleInfoTest, LocalesMapToWindowsIdsAndCodePages) {
    EXPECT_EQ(LocaleInfo::lcidOf(QLocale(QLocale::German, QLocale::Germany)), 0x0407u);
    EXPECT_EQ(LocaleInfo::lcidOf(QLocale(QLocale::German, QLocale::Austria)), 0x0C07u);
    EXPECT_EQ(LocaleInfo::lcidOf(QLocale(QLocale::German, QLocale::Belgium)), 0x0407u)
        << "an unknown territory takes the language's main one";
    EXPECT_EQ(LocaleInfo::lcidOf(QLocale(QLocale::Swahili, QLocale::Kenya)), 0x0409u);
    EXPECT_EQ(LocaleInfo::codePageOf(0x0419), 1251);
    EXPECT_EQ(LocaleInfo::codePageOf(0x0411), 932);
    EXPECT_EQ(LocaleInfo::codePageOf(0x0415), 1250);
    for (std::uint32_t lcid : {1033u, 2057u, 3081u, 4105u, 5129u, 6153u, 7177u, 8201u, 9225u,
                               10249u, 11273u, 12297u, 13321u})
        EXPECT_TRUE(LocaleInfo::isEnglish(lcid)) << lcid;
    EXPECT_FALSE(LocaleInfo::isEnglish(0x0407));
    EXPECT_FALSE(LocaleInfo::isEnglish(0x0009));
    EXPECT_EQ(LocaleInfo::languageIdHex(0x0c07), "0C07");
    EXPECT_EQ(LocaleInfo::languageIdHex(0x9), "0009");
    EXPECT_EQ(LocaleInfo::decimalSeparator(QLocale(QLocale::German, QLocale::Germany)), ",");
}
