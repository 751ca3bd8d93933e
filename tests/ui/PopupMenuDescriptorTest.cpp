#include "PopupMenuDescriptor.h"

#include <QStringList>

#include <gtest/gtest.h>

namespace {

// One line per entry, e.g. "A=5", "!Edit[Cut=1]", "#Loop=2", "-=1", so that a whole
// menu compares in one assertion and a failure shows the menu as read.
QString outline(const QList<PopupMenuItem>& items);

QString outline(const PopupMenuItem& item) {
    QString text = item.enabled ? QString() : QStringLiteral("!");
    if (item.checked)
        text += u'#';
    if (item.separator)
        return text + QStringLiteral("-=%1").arg(item.number);
    if (item.subMenu)
        return text + item.caption + u'[' + outline(item.children) + u']';
    return text + item.caption + QStringLiteral("=%1").arg(item.number);
}

QString outline(const QList<PopupMenuItem>& items) {
    QStringList pieces;
    for (const PopupMenuItem& item : items)
        pieces.append(outline(item));
    return pieces.join(u' ');
}

QString read(const QString& descriptor) {
    return outline(PopupMenuDescriptor::parse(descriptor));
}

} // namespace

TEST(PopupMenuDescriptorTest, ExplicitNumbersLeaveTheCounterAlone) {
    EXPECT_EQ(read("A;5,B"), "A=5 B=1");
    // After an explicit number the counter goes on where it was, not from that number.
    EXPECT_EQ(read("A,B;7,C,D;2,E"), "A=1 B=7 C=2 D=2 E=3");
}

TEST(PopupMenuDescriptorTest, ASeparatorUsesUpACounterNumber) {
    const QList<PopupMenuItem> items = PopupMenuDescriptor::parse("-,X");
    ASSERT_EQ(items.size(), 2);
    EXPECT_TRUE(items[0].separator);
    EXPECT_EQ(items[0].number, 1);
    EXPECT_TRUE(items[0].caption.isEmpty());
    EXPECT_FALSE(items[1].separator);
    EXPECT_EQ(items[1].caption, "X");
    EXPECT_EQ(items[1].number, 2);
}

TEST(PopupMenuDescriptorTest, SeparatorsAreTrimmedOfBlanksAndMayCarryANumber) {
    EXPECT_EQ(read(" - ,X"), "-=1 X=2");
    EXPECT_EQ(read("-;5,X"), "-=5 X=1");
    EXPECT_EQ(read("--,X"), "--=1 X=2") << "only a lone dash is a separator";
}

TEST(PopupMenuDescriptorTest, DisabledWinsOverCheckedAndCostsOneCharacter) {
    const QList<PopupMenuItem> items = PopupMenuDescriptor::parse("#!X");
    ASSERT_EQ(items.size(), 1);
    EXPECT_FALSE(items[0].enabled);
    EXPECT_FALSE(items[0].checked);
    EXPECT_EQ(items[0].caption, "!X");
    EXPECT_EQ(items[0].number, 1);
}

TEST(PopupMenuDescriptorTest, CheckedItemsLoseTheirMark) {
    EXPECT_EQ(read("Download picture;1,#Loop;2"), "Download picture=1 #Loop=2");
    EXPECT_EQ(read("!Save;3"), "!Save=3");
}

TEST(PopupMenuDescriptorTest, MarksCountAnywhereInTheItemButCutTheFirstCharacter) {
    EXPECT_EQ(read("Save!;3"), "!ave!=3");
    EXPECT_EQ(read("Loop#"), "#oop#=1");
    EXPECT_EQ(read("Take 5;!7"), "!ake 5=0") << "the number field belongs to the item too";
}

TEST(PopupMenuDescriptorTest, ADisabledHeaderLosesItsMarkAndItsNumber) {
    const QList<PopupMenuItem> items = PopupMenuDescriptor::parse("!Edit;0|Cut;1|Copy");
    ASSERT_EQ(items.size(), 1);
    const PopupMenuItem& edit = items[0];
    EXPECT_TRUE(edit.subMenu);
    EXPECT_FALSE(edit.enabled);
    EXPECT_EQ(edit.caption, "Edit");
    EXPECT_EQ(edit.number, 0);
    ASSERT_EQ(edit.children.size(), 2);
    EXPECT_EQ(edit.children[0].caption, "Cut");
    EXPECT_EQ(edit.children[0].number, 1);
    EXPECT_TRUE(edit.children[0].enabled) << "the items keep their own state";
    EXPECT_EQ(edit.children[1].number, 1) << "the header takes no counter number";
}

TEST(PopupMenuDescriptorTest, HeadersIgnoreEverythingAfterTheirFirstSemicolon) {
    EXPECT_EQ(read("Recent;0;x|a.mms;265"), "Recent[a.mms=265]");
    EXPECT_EQ(read("#Loop;4|A"), "#Loop[A=1]") << "only \"!\" marks a header";
}

TEST(PopupMenuDescriptorTest, OneCounterRunsThroughAllSubMenus) {
    EXPECT_EQ(read("A,Sub;0|B|C;9|-|D,E,Two;0|F"), "A=1 Sub[B=2 C=9 -=3 D=4] E=5 Two[F=6]");
}

TEST(PopupMenuDescriptorTest, TheThumbnailStripMenuReadsAsTheStripExpects) {
    EXPECT_EQ(read("Add;1,Insert;0|Before;3|After;4,Duplicate;0|Before;6|After;7,-,"
                   "Delete;0|Slide;9|-|Image;10|Sound;11|Text;12"),
              "Add=1 Insert[Before=3 After=4] Duplicate[Before=6 After=7] -=1 "
              "Delete[Slide=9 -=2 Image=10 Sound=11 Text=12]");
    EXPECT_EQ(read("Add;1,!Insert;0|Before;3|After;4,-,!Delete;0|Slide;9"),
              "Add=1 !Insert[Before=3 After=4] -=1 !Delete[Slide=9]");
}

TEST(PopupMenuDescriptorTest, OnlyExactlyTwoFieldsMakeAnExplicitNumber) {
    EXPECT_EQ(read("A;5;6,B"), "A=1 B=2");
    EXPECT_EQ(read(";;;"), "=1");
}

TEST(PopupMenuDescriptorTest, ATrailingSemicolonIsAnEmptyNumberThatReportsNothing) {
    // "B;" has two fields, so its number is explicit: the empty text reads as 0 and
    // the counter is not used.
    EXPECT_EQ(read("A;5,B;,C"), "A=5 B=0 C=1");
    EXPECT_EQ(read("-,X;"), "-=1 X=0");
    EXPECT_EQ(read("#!X;"), "!!X=0");
    EXPECT_EQ(read("!Edit;0;|Cut;1"), "!Edit[Cut=1]");
    EXPECT_EQ(read("!Edit;0;"), "!Edit=1") << "without \"|\" it is an item, not a header";
}

TEST(PopupMenuDescriptorTest, NumbersAreDecimalIntegersAndAnythingElseIsZero) {
    EXPECT_EQ(read("A; 42 ,B;-3,C;0x10,D;7a,E;99999999999"), "A=42 B=-3 C=0 D=0 E=0");
    EXPECT_EQ(read("F;010"), "F=10") << "a leading zero is not octal";
}

TEST(PopupMenuDescriptorTest, CaptionsKeepMnemonicsAndAllOtherText) {
    const QList<PopupMenuItem> items =
        PopupMenuDescriptor::parse("&Open;2,Save && close;3,#&Loop;4,Grüße\tCtrl+G;5");
    ASSERT_EQ(items.size(), 4);
    EXPECT_EQ(items[0].caption, "&Open");
    EXPECT_EQ(items[1].caption, "Save && close");
    EXPECT_EQ(items[2].caption, "&Loop");
    EXPECT_EQ(items[3].caption, "Grüße\tCtrl+G");
}

TEST(PopupMenuDescriptorTest, EveryDescriptorStartsItsOwnCount) {
    EXPECT_EQ(read("A,B"), "A=1 B=2");
    EXPECT_EQ(read("A,B"), "A=1 B=2");
}

TEST(PopupMenuDescriptorTest, EmptyAndOddDescriptorsGiveWhatTheirSeparatorsSay) {
    EXPECT_TRUE(PopupMenuDescriptor::parse("").isEmpty());
    EXPECT_EQ(read(","), "=1 =2");
    EXPECT_EQ(read("|"), "[=1]");
    EXPECT_EQ(read("||,"), "[=1 =2] =3");
    EXPECT_EQ(read("!"), "!=1");
    EXPECT_EQ(read("!|#"), "![#=1]");
}

TEST(PopupMenuDescriptorTest, GarbageNeverBreaksTheReader) {
    const QString alphabet = QStringLiteral(",|;!#- &0123456789xü\t");
    quint32 seed = 12345;
    for (int round = 0; round < 2000; ++round) {
        QString descriptor;
        const int length = round % 40;
        for (int i = 0; i < length; ++i) {
            seed = seed * 1664525u + 1013904223u; // a fixed sequence keeps failures repeatable
            descriptor += alphabet.at((seed >> 16) % alphabet.size());
        }
        const QList<PopupMenuItem> items = PopupMenuDescriptor::parse(descriptor);
        const qsizetype entries = descriptor.isEmpty() ? 0 : descriptor.count(u',') + 1;
        ASSERT_EQ(items.size(), entries) << descriptor.toStdString();
        for (const PopupMenuItem& item : items)
            EXPECT_EQ(item.subMenu, !item.children.isEmpty()) << descriptor.toStdString();
    }
}
