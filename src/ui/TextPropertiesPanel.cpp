#include "TextPropertiesPanel.h"

#include "AppGlobals.h"
#include "DialogService.h"
#include "FieldLabel.h"
#include "StoredColor.h"

#include <QButtonGroup>
#include <QFontComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QShortcut>
#include <QSpinBox>
#include <QToolButton>

namespace {
// Stored alignments: 0 left, 1 right, 2 centred; anything else is drawn left.
constexpr int kAlignLeft = 0;
constexpr int kAlignRight = 1;
constexpr int kAlignCenter = 2;

// What the renderer draws a text in when the message names no font or size.
const QString kDefaultFont = QStringLiteral("Verdana");
constexpr double kDefaultSize = 8.0;

int alignmentShown(int stored) {
    return stored == kAlignRight || stored == kAlignCenter ? stored : kAlignLeft;
}

// A button without a caption is named for screen readers and in its tool tip,
// with its key where it has one.
void describe(QToolButton* button, const QString& text, QKeySequence::StandardKey key) {
    button->setAccessibleName(text);
    const QString keys = QKeySequence(key).toString(QKeySequence::NativeText);
    button->setToolTip(keys.isEmpty() ? text : text + " (" + keys + u')');
}

// Lines of a paragraph set left, centred or right, for desktops whose icon
// theme has no alignment icons.
QIcon alignmentGlyph(Qt::Alignment side, const QColor& ink) {
    constexpr int kSize = 16;
    QPixmap pixmap(kSize, kSize);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    const int widths[] = {14, 8, 14, 10};
    for (int line = 0; line < 4; ++line) {
        const int width = widths[line];
        const int x = side == Qt::AlignLeft    ? 1
                      : side == Qt::AlignRight ? kSize - 1 - width
                                               : (kSize - width) / 2;
        painter.fillRect(x, 2 + line * 4, width, 2, ink);
    }
    return QIcon(pixmap);
}

QIcon swatch(const QColor& color, const QSize& size) {
    QPixmap pixmap(size);
    pixmap.fill(color);
    QPainter painter(&pixmap);
    painter.setPen(Qt::darkGray);
    painter.drawRect(pixmap.rect().adjusted(0, 0, -1, -1));
    return QIcon(pixmap);
}
} // namespace

TextPropertiesPanel::TextPropertiesPanel(QWidget* parent)
    : QWidget(parent), lblNoText(new QLabel(this)), m_fields(new QWidget(this)),
      cboFont(new QFontComboBox(this)), spnFontSize(new QSpinBox(this)),
      chkBold(styleButton("chkBold", "format-text-bold", QKeySequence::Bold, &QFont::setBold)),
      chkItalic(
          styleButton("chkItalic", "format-text-italic", QKeySequence::Italic, &QFont::setItalic)),
      chkUnderline(styleButton("chkUnderline", "format-text-underline", QKeySequence::Underline,
                               &QFont::setUnderline)),
      m_alignment(new QButtonGroup(this)),
      optAlignLeft(alignButton("optAlignLeft", "format-justify-left", kAlignLeft, Qt::AlignLeft)),
      optAlignCenter(
          alignButton("optAlignCenter", "format-justify-center", kAlignCenter, Qt::AlignHCenter)),
      optAlignRight(
          alignButton("optAlignRight", "format-justify-right", kAlignRight, Qt::AlignRight)),
      cmdColor(new QPushButton(this)), lblFont(FieldLabel::create(cboFont, this)),
      lblSize(FieldLabel::create(spnFontSize, this)), lblStyle(FieldLabel::create(chkBold, this)),
      lblAlignment(FieldLabel::create(optAlignLeft, this)),
      lblColor(FieldLabel::create(cmdColor, this)) {
    setObjectName(QStringLiteral("TextPropertiesPanel"));
    lblNoText->setObjectName(QStringLiteral("lblNoText"));
    lblNoText->setWordWrap(true);
    cboFont->setObjectName(QStringLiteral("cboFont"));
    // The dock is narrow: the list shows the whole names, the box what fits.
    cboFont->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    cboFont->setMinimumContentsLength(8);
    // A typed name is taken only when this computer has that font.
    cboFont->setInsertPolicy(QComboBox::NoInsert);
    spnFontSize->setObjectName(QStringLiteral("spnFontSize"));
    spnFontSize->setRange(4, 200);
    // Typing 12 is one change, not a change to 1 and another to 12.
    spnFontSize->setKeyboardTracking(false);
    cmdColor->setObjectName(QStringLiteral("cmdColor"));
    buildLayout();
    connectEdits();
    TranslateControl();
    showText(nullptr);
}

// A window closing takes the focus from the font box's typing field after this
// panel is gone; the field must not report that to it.
TextPropertiesPanel::~TextPropertiesPanel() {
    cboFont->lineEdit()->disconnect(this);
}

QToolButton* TextPropertiesPanel::toolButton(const char* name, const QIcon& icon) {
    auto* button = new QToolButton(this);
    button->setObjectName(QLatin1String(name));
    button->setCheckable(true);
    button->setIcon(icon);
    return button;
}

QToolButton* TextPropertiesPanel::styleButton(const char* name, const QString& icon,
                                              QKeySequence::StandardKey key,
                                              void (QFont::*setStyle)(bool)) {
    QToolButton* button = toolButton(name, QIcon::fromTheme(icon));
    // Without an icon the caption shows, written in the style it switches.
    QFont look = button->font();
    (look.*setStyle)(true);
    button->setFont(look);
    auto* shortcut = new QShortcut(key, this);
    shortcut->setContext(Qt::WidgetWithChildrenShortcut);
    connect(shortcut, &QShortcut::activated, button, &QToolButton::click);
    return button;
}

QToolButton* TextPropertiesPanel::alignButton(const char* name, const QString& icon, int stored,
                                              Qt::Alignment side) {
    const QColor ink = palette().color(QPalette::ButtonText);
    QToolButton* button = toolButton(name, QIcon::fromTheme(icon, alignmentGlyph(side, ink)));
    m_alignment->addButton(button, stored);
    return button;
}

void TextPropertiesPanel::buildLayout() {
    auto* style = new QHBoxLayout;
    for (QToolButton* button : {chkBold, chkItalic, chkUnderline})
        style->addWidget(button);
    style->addStretch();
    auto* alignment = new QHBoxLayout;
    for (QToolButton* button : {optAlignLeft, optAlignCenter, optAlignRight})
        alignment->addWidget(button);
    alignment->addStretch();
    auto* form = new QFormLayout(m_fields);
    form->setContentsMargins(QMargins());
    form->setRowWrapPolicy(QFormLayout::WrapLongRows);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->addRow(lblFont, cboFont);
    form->addRow(lblSize, spnFontSize);
    form->addRow(lblStyle, style);
    form->addRow(lblAlignment, alignment);
    form->addRow(lblColor, cmdColor);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(lblNoText);
    layout->addWidget(m_fields);
    layout->addStretch();
}

void TextPropertiesPanel::connectEdits() {
    connect(cboFont, &QComboBox::activated, this, &TextPropertiesPanel::fontPicked);
    // A name typed but not taken must not look as if the text had that font.
    connect(cboFont->lineEdit(), &QLineEdit::editingFinished, this,
            [this] { cboFont->setEditText(cboFont->itemText(cboFont->currentIndex())); });
    connect(spnFontSize, &QSpinBox::valueChanged, this,
            [this](int points) { edit([points](auto& p) { p.fontSize = points; }); });
    connect(chkBold, &QToolButton::clicked, this,
            [this](bool on) { edit([on](auto& p) { p.bold = on; }); });
    connect(chkItalic, &QToolButton::clicked, this,
            [this](bool on) { edit([on](auto& p) { p.italic = on; }); });
    connect(chkUnderline, &QToolButton::clicked, this,
            [this](bool on) { edit([on](auto& p) { p.underline = on; }); });
    connect(m_alignment, &QButtonGroup::idClicked, this, &TextPropertiesPanel::alignmentClicked);
    connect(cmdColor, &QPushButton::clicked, this, &TextPropertiesPanel::chooseColor);
}

void TextPropertiesPanel::TranslateControl() {
    FieldLabel::setCaption(lblFont, AppGlobals::text("STR_TEXT_FONT", "F&ont"));
    FieldLabel::setCaption(lblSize, AppGlobals::text("STR_TEXT_SIZE", "Si&ze"));
    FieldLabel::setCaption(lblColor, AppGlobals::text("STR_TEXT_COLOR", "Co&lor"));
    lblStyle->setText(FieldLabel::withMnemonic(AppGlobals::text("STR_TEXT_STYLE", "St&yle")));
    lblAlignment->setText(
        FieldLabel::withMnemonic(AppGlobals::text("STR_TEXT_ALIGN", "&Alignment")));
    translateButtons();
    lblNoText->setText(AppGlobals::text("STR_TEXT_NONE_SELECTED",
                                        "Select a text on the picture or add one to change "
                                        "its font, size and color here."));
}

void TextPropertiesPanel::translateButtons() {
    const auto style = [](QToolButton* button, const QString& text, QKeySequence::StandardKey key) {
        describe(button, text, key);
        // B, I and U in English, F, K and U in German: a narrow dock has no
        // room for the whole words.
        button->setText(text.left(1));
    };
    style(chkBold, AppGlobals::text("STR_TEXT_BOLD", "Bold"), QKeySequence::Bold);
    style(chkItalic, AppGlobals::text("STR_TEXT_ITALIC", "Italic"), QKeySequence::Italic);
    style(chkUnderline, AppGlobals::text("STR_TEXT_UNDERLINE", "Underline"),
          QKeySequence::Underline);
    const auto none = QKeySequence::UnknownKey;
    describe(optAlignLeft, AppGlobals::text("STR_TEXT_ALIGN_LEFT", "Align left"), none);
    describe(optAlignCenter, AppGlobals::text("STR_TEXT_ALIGN_CENTER", "Center"), none);
    describe(optAlignRight, AppGlobals::text("STR_TEXT_ALIGN_RIGHT", "Align right"), none);
}

void TextPropertiesPanel::showText(const DrawObjectProperties* text) {
    lblNoText->setVisible(text == nullptr);
    m_fields->setEnabled(text != nullptr);
    showValues(text ? *text : DrawObjectProperties::forText(QString(), QRect()));
}

void TextPropertiesPanel::showValues(const DrawObjectProperties& text) {
    m_text = text;
    // A font this computer lacks shows as the one drawn instead; the message
    // keeps its own name until the user picks another.
    cboFont->setCurrentFont(QFont(text.fontName.isEmpty() ? kDefaultFont : text.fontName));
    {
        const QSignalBlocker quiet(spnFontSize);
        spnFontSize->setValue(qRound(text.fontSize > 0 ? text.fontSize : kDefaultSize));
    }
    chkBold->setChecked(text.bold);
    chkItalic->setChecked(text.italic);
    chkUnderline->setChecked(text.underline);
    m_alignment->button(alignmentShown(text.fontAlign))->setChecked(true);
    showColor(text.fontColor);
}

void TextPropertiesPanel::showColor(qint64 stored) {
    const QColor color = StoredColor::toQColor(stored);
    cmdColor->setIcon(swatch(color, cmdColor->iconSize()));
    cmdColor->setText(StoredColor::toHex(stored));
    cmdColor->setAccessibleDescription(StoredColor::toHex(stored));
}

void TextPropertiesPanel::edit(const std::function<void(DrawObjectProperties&)>& change) {
    change(m_text);
    emit propertiesEdited(m_text);
}

void TextPropertiesPanel::fontPicked() {
    const QString family = cboFont->currentFont().family();
    if (family != m_text.fontName)
        edit([&family](auto& p) { p.fontName = family; });
}

void TextPropertiesPanel::alignmentClicked(int stored) {
    if (stored != alignmentShown(m_text.fontAlign))
        edit([stored](auto& p) { p.fontAlign = stored; });
}

void TextPropertiesPanel::chooseColor() {
    const QColor shown = StoredColor::toQColor(m_text.fontColor);
    const QColor chosen = DialogService::colorDialog(
        this, shown, AppGlobals::text("STR_TEXT_COLOR_TITLE", "Text color"));
    if (!chosen.isValid() || chosen.rgb() == shown.rgb())
        return;
    edit([&chosen](auto& p) { p.fontColor = StoredColor::fromQColor(chosen); });
    showColor(m_text.fontColor);
}
