#include "QtPrinters.h"
#include "ctlSlideTime.h"

#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace {
// Types text into the field as a user does: select all, type, Enter.
void typeInto(ctlSlideTime& field, const QString& text) {
    field.setFocus();
    field.selectAll();
    QTest::keyClicks(&field, text);
    QTest::keyClick(&field, Qt::Key_Return);
}
} // namespace

TEST(SlideTimeTest, TheSettingChoosesSecondsOrMilliseconds) {
    ctlSlideTime field;
    field.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&field));
    QSignalSpy edited(&field, &ctlSlideTime::durationEdited);

    field.setTimeFormat("s");
    field.setDuration(2500);
    EXPECT_EQ(field.text(), QLocale().toString(2.5, 'f', 1) + " s");
    EXPECT_EQ(edited.count(), 0) << "the window's own setting is no edit";
    typeInto(field, QLocale().toString(4.2, 'f', 1));
    ASSERT_EQ(edited.count(), 1);
    EXPECT_EQ(edited[0][0].toLongLong(), 4200);

    for (const QString& format : {QString("ms"), QString("seconds"), QString()}) {
        field.setTimeFormat(format);
        EXPECT_FALSE(field.showsSeconds()) << format.toStdString();
        EXPECT_EQ(field.duration(), 4200) << "the duration survives a change of format";
    }
    typeInto(field, "750");
    EXPECT_EQ(edited.last()[0].toLongLong(), 750);
    typeInto(field, "0");
    EXPECT_EQ(field.duration(), 750) << "a slide lasts at least a millisecond: 0 is not taken";
    QTest::keyClick(&field, Qt::Key_Up);
    EXPECT_EQ(field.duration(), 850);
}
