#include "TextPropertiesPanel.h"
#include "AppGlobals.h"
#include "DialogService.h"
#include "SettingsBootstrap.h"
#include "StoredColor.h"
#include "TempDataHome.h"
#include "clsPropertiesXML.h"
#include "clsXMLocalizer.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QColorDialog>
#include <QFontComboBox>
#include <QFontDatabase>
#include <QLabel>
#include <QLineEdit>
#include <QMap>
#include <QPushButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>
#include <functional>
#include <memory>

namespace {
// The names of the properties that differ between two versions of an object.
QStringList changedFields(const DrawObjectProperties& a, const DrawObjectProperties& b) {
    QStringList changed;
    const auto check = [&changed](bool differs, const char* name) {
        if (differs)
            changed << name;
    };
    check(a.name != b.name, "name");
    check(a.typ != b.typ, "typ");
    check(a.x != b.x || a.y != b.y || a.w != b.w || a.h != b.h, "rect");
    check(a.zorder != b.zorder, "zorder");
    check(a.image != b.image, "image");
    check(a.text != b.text, "text");
    check(a.fontName != b.fontName, "fontName");
    check(a.fontSize != b.fontSize, "fontSize");
    check(a.fontColor != b.fontColor, "fontColor");
    check(a.fontAlign != b.fontAlign, "fontAlign");
    check(a.bold != b.bold, "bold");
    check(a.italic != b.italic, "italic");
    check(a.underline != b.underline, "underline");
    check(a.charset != b.charset, "charset");
    return changed;
}

// Opens the font list and clicks the font, as a user picks one.
void pickFromList(QFontComboBox* font, const QString& family) {
    font->showPopup();
    QAbstractItemView* list = font->view();
    const QModelIndexList found = list->model()->match(list->model()->index(0, 0), Qt::DisplayRole,
                                                       family, 1, Qt::MatchExactly);
    ASSERT_EQ(found.size(), 1) << family.toStdString();
    list->scrollTo(found[0]);
    QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(found[0]).center());
    EXPECT_FALSE(list->isVisible()) << "the list closes on a click";
}

// A centred, bold, blue-ish text in a font every machine here has.
DrawObjectProperties sampleText() {
    DrawObjectProperties text =
        DrawObjectProperties::forText("Happy birthday", QRect(10, 20, 120, 40), 3);
    text.name = "Text 1";
    text.fontName = "DejaVu Sans";
    text.fontSize = 12;
    text.fontColor = 0x3366CC;
    text.fontAlign = 2;
    text.bold = true;
    text.charset = 1;
    return text;
}
} // namespace

// The panel driven as a user drives it: clicks, keys and answered dialogs.
class TextPropertiesPanelTest : public TempDataHome {
protected:
    void SetUp() override {
        TempDataHome::SetUp();
        AppGlobals::installSettings(SettingsBootstrap::openAndPrepare());
        useLanguage("en-us");
        m_window = std::make_unique<QWidget>();
        m_outside = new QLineEdit(m_window.get());
        m_panel = new TextPropertiesPanel(m_window.get());
        auto* layout = new QVBoxLayout(m_window.get());
        layout->addWidget(m_outside);
        layout->addWidget(m_panel);
        m_window->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(m_window.get()));
        m_window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_window.get()));
        m_edited = std::make_unique<QSignalSpy>(m_panel, &TextPropertiesPanel::propertiesEdited);
    }
    void TearDown() override {
        m_edited.reset();
        m_window.reset();
        DialogService::clear();
        TempDataHome::TearDown();
    }
    static void useLanguage(const QString& code) {
        auto localizer = std::make_unique<clsXMLocalizer>(*AppGlobals::settings());
        ASSERT_TRUE(localizer->SetLanguage(code));
        AppGlobals::installLocalizer(std::move(localizer));
    }
    template <typename T> T* control(const char* name) const {
        T* found = m_panel->findChild<T*>(QLatin1String(name));
        EXPECT_NE(found, nullptr) << name;
        return found;
    }
    QToolButton* button(const char* name) const { return control<QToolButton>(name); }
    DrawObjectProperties edited(qsizetype i) const {
        return m_edited->at(i).at(0).value<DrawObjectProperties>();
    }
    // Shows the object and expects exactly one edit from the action, which
    // changes only the named property.
    template <typename Action>
    DrawObjectProperties expectOneEdit(const DrawObjectProperties& shown, const char* property,
                                       Action action) {
        m_panel->showText(&shown);
        m_edited->clear();
        action();
        EXPECT_EQ(m_edited->count(), 1) << property;
        if (m_edited->count() != 1)
            return shown;
        const DrawObjectProperties changed = edited(0);
        EXPECT_EQ(changedFields(shown, changed), QStringList{property});
        return changed;
    }
    QColor swatchColor() const {
        const auto* color = control<QPushButton>("cmdColor");
        const QImage image = color->icon().pixmap(color->iconSize()).toImage();
        return image.pixelColor(image.width() / 2, image.height() / 2);
    }

    std::unique_ptr<QWidget> m_window;
    QLineEdit* m_outside = nullptr;
    TextPropertiesPanel* m_panel = nullptr;
    std::unique_ptr<QSignalSpy> m_edited;
};

TEST_F(TextPropertiesPanelTest, ShowingATextFillsTheControlsWithoutAnEdit) {
    const DrawObjectProperties text = sampleText();
    m_panel->showText(&text);
    EXPECT_EQ(control<QFontComboBox>("cboFont")->currentFont().family(), "DejaVu Sans");
    EXPECT_EQ(control<QSpinBox>("spnFontSize")->value(), 12);
    EXPECT_TRUE(button("chkBold")->isChecked());
    EXPECT_FALSE(button("chkItalic")->isChecked());
    EXPECT_FALSE(button("chkUnderline")->isChecked());
    EXPECT_TRUE(button("optAlignCenter")->isChecked());
    EXPECT_FALSE(button("optAlignLeft")->isChecked());
    EXPECT_EQ(control<QPushButton>("cmdColor")->text(), "#CC6633") << "red is the low byte";
    EXPECT_EQ(swatchColor(), QColor(0xCC, 0x66, 0x33));
    EXPECT_FALSE(control<QLabel>("lblNoText")->isVisible());

    DrawObjectProperties other = text;
    other.fontName = "DejaVu Serif";
    other.fontSize = 30;
    other.fontColor = 0x0000FF;
    other.fontAlign = 1;
    other.bold = false;
    other.italic = other.underline = true;
    m_panel->showText(&other);
    EXPECT_EQ(control<QFontComboBox>("cboFont")->currentFont().family(), "DejaVu Serif");
    EXPECT_EQ(control<QSpinBox>("spnFontSize")->value(), 30);
    EXPECT_FALSE(button("chkBold")->isChecked());
    EXPECT_TRUE(button("chkItalic")->isChecked());
    EXPECT_TRUE(button("chkUnderline")->isChecked());
    EXPECT_TRUE(button("optAlignRight")->isChecked());
    EXPECT_EQ(swatchColor(), QColor(Qt::red));
    m_panel->showText(nullptr);
    m_panel->showText(&text);
    EXPECT_EQ(m_edited->count(), 0) << "showing is no edit";
}

TEST_F(TextPropertiesPanelTest, EachStyleButtonChangesItsOwnPropertyOnce) {
    const DrawObjectProperties text = sampleText();
    DrawObjectProperties changed = expectOneEdit(
        text, "bold", [this] { QTest::mouseClick(button("chkBold"), Qt::LeftButton); });
    EXPECT_FALSE(changed.bold);
    changed = expectOneEdit(text, "italic",
                            [this] { QTest::mouseClick(button("chkItalic"), Qt::LeftButton); });
    EXPECT_TRUE(changed.italic);
    changed = expectOneEdit(text, "underline",
                            [this] { QTest::mouseClick(button("chkUnderline"), Qt::LeftButton); });
    EXPECT_TRUE(changed.underline);
}

TEST_F(TextPropertiesPanelTest, EditsFollowOneAnotherWithoutTheObjectShownAgain) {
    const DrawObjectProperties text = sampleText();
    m_panel->showText(&text);
    QTest::mouseClick(button("chkItalic"), Qt::LeftButton);
    QTest::mouseClick(button("optAlignLeft"), Qt::LeftButton);
    ASSERT_EQ(m_edited->count(), 2);
    EXPECT_EQ(changedFields(text, edited(1)), (QStringList{"fontAlign", "italic"}))
        << "the second edit keeps the first";
}

TEST_F(TextPropertiesPanelTest, StyleKeysWorkWhileTheFocusIsInThePanel) {
    const DrawObjectProperties text = sampleText();
    auto* size = control<QSpinBox>("spnFontSize");
    const auto press = [size](Qt::Key key) {
        size->setFocus();
        QTest::keyClick(QApplication::focusWidget(), key, Qt::ControlModifier);
    };
    EXPECT_FALSE(expectOneEdit(text, "bold", [&] { press(Qt::Key_B); }).bold);
    EXPECT_TRUE(expectOneEdit(text, "italic", [&] { press(Qt::Key_I); }).italic);
    EXPECT_TRUE(expectOneEdit(text, "underline", [&] { press(Qt::Key_U); }).underline);
    auto* font = control<QFontComboBox>("cboFont");
    EXPECT_TRUE(expectOneEdit(text, "underline",
                              [&] {
                                  font->setFocus();
                                  QTest::keyClick(QApplication::focusWidget(), Qt::Key_U,
                                                  Qt::ControlModifier);
                              })
                    .underline)
        << "the font box's typing field leaves the key to the panel";

    m_panel->showText(&text);
    m_edited->clear();
    m_outside->setFocus();
    QTest::keyClick(m_outside, Qt::Key_B, Qt::ControlModifier);
    EXPECT_EQ(m_edited->count(), 0) << "outside the panel the key is not the panel's";
    EXPECT_TRUE(button("chkBold")->isChecked());
}

TEST_F(TextPropertiesPanelTest, TheSizeIsTypedOrSteppedInPoints) {
    const DrawObjectProperties text = sampleText();
    auto* size = control<QSpinBox>("spnFontSize");
    DrawObjectProperties changed = expectOneEdit(text, "fontSize", [size] {
        size->setFocus();
        size->selectAll();
        QTest::keyClicks(size, "24");
        QTest::keyClick(size, Qt::Key_Return);
    });
    EXPECT_EQ(changed.fontSize, 24.0);
    changed = expectOneEdit(text, "fontSize", [size] { QTest::keyClick(size, Qt::Key_Up); });
    EXPECT_EQ(changed.fontSize, 13.0);
    EXPECT_EQ(size->minimum(), 4);
    EXPECT_EQ(size->maximum(), 200);

    DrawObjectProperties unsized = text;
    unsized.fontSize = 0;
    m_panel->showText(&unsized);
    EXPECT_EQ(size->value(), 8) << "no size is drawn as 8 points";

    DrawObjectProperties between = text;
    between.fontSize = 10.5;
    const DrawObjectProperties bolder = expectOneEdit(
        between, "bold", [this] { QTest::mouseClick(button("chkBold"), Qt::LeftButton); });
    EXPECT_EQ(size->value(), 11);
    EXPECT_EQ(bolder.fontSize, 10.5) << "a size between points is kept unless changed";
}

TEST_F(TextPropertiesPanelTest, AlignmentButtonsAreExclusiveAndStoreLeftRightCentre) {
    const DrawObjectProperties text = sampleText();
    EXPECT_EQ(expectOneEdit(text, "fontAlign",
                            [this] { QTest::mouseClick(button("optAlignRight"), Qt::LeftButton); })
                  .fontAlign,
              1);
    EXPECT_FALSE(button("optAlignCenter")->isChecked());
    EXPECT_EQ(expectOneEdit(text, "fontAlign",
                            [this] { QTest::mouseClick(button("optAlignLeft"), Qt::LeftButton); })
                  .fontAlign,
              0);
    DrawObjectProperties left = text;
    left.fontAlign = 0;
    EXPECT_EQ(expectOneEdit(left, "fontAlign",
                            [this] { QTest::mouseClick(button("optAlignCenter"), Qt::LeftButton); })
                  .fontAlign,
              2);

    m_panel->showText(&text);
    m_edited->clear();
    QTest::mouseClick(button("optAlignCenter"), Qt::LeftButton);
    EXPECT_EQ(m_edited->count(), 0) << "the alignment it already has is no change";
    EXPECT_TRUE(button("optAlignCenter")->isChecked());
}

TEST_F(TextPropertiesPanelTest, AMissingFontIsKeptUntilTheUserPicksOne) {
    const QString missing = "Vellumo Missing Sans";
    ASSERT_FALSE(QFontDatabase::hasFamily(missing));
    DrawObjectProperties text = sampleText();
    text.fontName = missing;
    auto* font = control<QFontComboBox>("cboFont");
    const DrawObjectProperties bolder = expectOneEdit(
        text, "bold", [this] { QTest::mouseClick(button("chkBold"), Qt::LeftButton); });
    EXPECT_EQ(bolder.fontName, missing);
    EXPECT_NE(font->currentText(), missing) << "the box shows the font drawn instead";

    // The user opens the list and clicks a font.
    const DrawObjectProperties picked =
        expectOneEdit(text, "fontName", [font] { pickFromList(font, "DejaVu Serif"); });
    EXPECT_EQ(picked.fontName, "DejaVu Serif");
}

TEST_F(TextPropertiesPanelTest, TheColourComesFromTheColourDialog) {
    const DrawObjectProperties text = sampleText();
    auto* color = control<QPushButton>("cmdColor");
    DialogService::queueColorAnswer(QColor(255, 0, 0));
    const DrawObjectProperties red =
        expectOneEdit(text, "fontColor", [color] { QTest::mouseClick(color, Qt::LeftButton); });
    EXPECT_EQ(red.fontColor, 255) << "red is the low byte";
    EXPECT_EQ(color->text(), "#FF0000");
    EXPECT_EQ(swatchColor(), QColor(Qt::red));
    ASSERT_EQ(DialogService::answeredColorDialogs().size(), 1);
    EXPECT_EQ(DialogService::answeredColorDialogs()[0].initial, QColor(0xCC, 0x66, 0x33))
        << "the dialog starts at the text's colour";
    EXPECT_EQ(DialogService::answeredColorDialogs()[0].title, "Text color");

    m_panel->showText(&text);
    m_edited->clear();
    DialogService::queueColorAnswer(QColor()); // cancelled
    QTest::mouseClick(color, Qt::LeftButton);
    DialogService::queueColorAnswer(QColor(0xCC, 0x66, 0x33)); // the same colour
    QTest::keyClick(color, Qt::Key_Space);
    EXPECT_EQ(DialogService::answeredColorDialogs().size(), 3);
    EXPECT_EQ(m_edited->count(), 0);
    EXPECT_EQ(color->text(), "#CC6633");
    EXPECT_EQ(swatchColor(), QColor(0xCC, 0x66, 0x33));
}

TEST_F(TextPropertiesPanelTest, WithoutATextEverythingIsDisabledAndAHintSaysWhy) {
    m_panel->showText(nullptr);
    auto* hint = control<QLabel>("lblNoText");
    EXPECT_TRUE(hint->isVisible());
    EXPECT_EQ(hint->text(),
              "Select a text on the picture or add one to change its font, size and color here.");
    const QList<QWidget*> controls = {control<QFontComboBox>("cboFont"),
                                      control<QSpinBox>("spnFontSize"),
                                      button("chkBold"),
                                      button("chkItalic"),
                                      button("chkUnderline"),
                                      button("optAlignLeft"),
                                      button("optAlignCenter"),
                                      button("optAlignRight"),
                                      control<QPushButton>("cmdColor")};
    for (QWidget* widget : controls)
        EXPECT_FALSE(widget->isEnabled()) << widget->objectName().toStdString();
    DialogService::queueColorAnswer(QColor(Qt::green));
    QTest::mouseClick(button("chkBold"), Qt::LeftButton);
    QTest::mouseClick(control<QPushButton>("cmdColor"), Qt::LeftButton);
    m_panel->setFocus();
    QTest::keyClick(m_panel, Qt::Key_B, Qt::ControlModifier);
    EXPECT_EQ(m_edited->count(), 0);
    EXPECT_TRUE(DialogService::answeredColorDialogs().isEmpty());

    const DrawObjectProperties text = sampleText();
    m_panel->showText(&text);
    EXPECT_FALSE(hint->isVisible());
    for (QWidget* widget : controls)
        EXPECT_TRUE(widget->isEnabled()) << widget->objectName().toStdString();
}

TEST_F(TextPropertiesPanelTest, AWindowOfItsOwnClosesWhileAFontNameIsBeingTyped) {
    auto panel = std::make_unique<TextPropertiesPanel>();
    const DrawObjectProperties text = sampleText();
    panel->showText(&text);
    panel->show();
    panel->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(panel.get()));
    auto* font = panel->findChild<QFontComboBox*>("cboFont");
    font->setFocus();
    QTest::keyClicks(font->lineEdit(), "DejaVu");
    ASSERT_TRUE(font->lineEdit()->hasFocus());
    // Closing takes the focus from the typing field after the panel is gone.
    panel.reset();
    EXPECT_EQ(QApplication::focusWidget(), nullptr);
}

namespace {
// What a screen reader says for each control, by name.
QMap<QString, QString> accessibleNames(const TextPropertiesPanel& panel) {
    QMap<QString, QString> names;
    for (const char* control : {"cboFont", "spnFontSize", "cmdColor", "chkBold", "chkItalic",
                                "chkUnderline", "optAlignLeft", "optAlignCenter", "optAlignRight"})
        names[control] = panel.findChild<QWidget*>(QLatin1String(control))->accessibleName();
    return names;
}

// The buttons without a caption say what they do in their tool tips.
void expectToolTipsNameTheButtons(const TextPropertiesPanel& panel) {
    for (const QToolButton* button : panel.findChildren<QToolButton*>()) {
        EXPECT_FALSE(button->accessibleName().isEmpty()) << button->objectName().toStdString();
        EXPECT_TRUE(button->toolTip().startsWith(button->accessibleName()))
            << button->objectName().toStdString();
    }
}

QStringList labelTexts(const TextPropertiesPanel& panel) {
    QStringList texts;
    for (const QLabel* label : panel.findChildren<QLabel*>())
        if (label->buddy())
            texts << label->text();
    return texts;
}
} // namespace

TEST_F(TextPropertiesPanelTest, ControlsAreNamedInEnglishAndGerman) {
    const QMap<QString, QString> english{{"cboFont", "Font"},
                                         {"spnFontSize", "Size"},
                                         {"cmdColor", "Color"},
                                         {"chkBold", "Bold"},
                                         {"chkItalic", "Italic"},
                                         {"chkUnderline", "Underline"},
                                         {"optAlignLeft", "Align left"},
                                         {"optAlignCenter", "Center"},
                                         {"optAlignRight", "Align right"}};
    EXPECT_EQ(accessibleNames(*m_panel), english);
    expectToolTipsNameTheButtons(*m_panel);
    EXPECT_EQ(button("chkBold")->toolTip(), "Bold (Ctrl+B)");
    EXPECT_EQ(labelTexts(*m_panel),
              (QStringList{"F&ont", "Si&ze", "St&yle", "&Alignment", "Co&lor"}));

    useLanguage("de-de");
    m_panel->TranslateControl();
    const QMap<QString, QString> german{{"cboFont", "Schriftart"},
                                        {"spnFontSize", "Größe"},
                                        {"cmdColor", "Farbe"},
                                        {"chkBold", "Fett"},
                                        {"chkItalic", "Kursiv"},
                                        {"chkUnderline", "Unterstrichen"},
                                        {"optAlignLeft", "Linksbündig"},
                                        {"optAlignCenter", "Zentriert"},
                                        {"optAlignRight", "Rechtsbündig"}};
    EXPECT_EQ(accessibleNames(*m_panel), german);
    expectToolTipsNameTheButtons(*m_panel);
    EXPECT_EQ(button("chkItalic")->toolTip(), "Kursiv (Strg+I)");
    EXPECT_EQ(labelTexts(*m_panel),
              (QStringList{"&Schriftart", "&Größe", "Sti&l", "A&usrichtung", "Fa&rbe"}));
    EXPECT_TRUE(control<QLabel>("lblNoText")->text().startsWith("Wählen Sie einen Text"));
}
