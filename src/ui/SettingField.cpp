#include "SettingField.h"

#include "AppGlobals.h"
#include "DialogService.h"
#include "FieldLabel.h"
#include "StoredColor.h"
#include "clsPropertiesXML.h"

#include <QCheckBox>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPushButton>
#include <QRegularExpression>
#include <QSpinBox>
#include <algorithm>

namespace {
QString text(const char* key, const char* fallback) {
    return AppGlobals::text(key, fallback);
}

const QString kOn = QStringLiteral("1");
} // namespace

SettingField::SettingField(Description description) : m_description(std::move(description)) {
    m_control = makeControl();
    m_control->setObjectName(m_description.key);
    if (m_description.kind != Kind::Check)
        m_label = FieldLabel::create(m_editor, nullptr);
    translate();
}

SettingField::~SettingField() = default;

QWidget* SettingField::makeControl() {
    switch (m_description.kind) {
    case Kind::Check:
        return m_editor = new QCheckBox;
    case Kind::Number: {
        auto* spin = new QSpinBox;
        spin->setRange(m_description.minimum, m_description.maximum);
        return m_editor = spin;
    }
    case Kind::Choice:
        return m_editor = new QComboBox;
    case Kind::Text:
        return m_editor = new QLineEdit;
    case Kind::Folder:
        return makeFolderControl();
    case Kind::Colour: {
        auto* button = new QPushButton;
        QObject::connect(button, &QPushButton::clicked, [this] { chooseColour(); });
        return m_editor = button;
    }
    }
    return nullptr;
}

QWidget* SettingField::makeFolderControl() {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    m_editor = new QLineEdit;
    auto* browse = new QPushButton;
    browse->setObjectName(QStringLiteral("cmdBrowse"));
    layout->addWidget(m_editor, 1);
    layout->addWidget(browse);
    QObject::connect(browse, &QPushButton::clicked, [this] { chooseFolder(); });
    return row;
}

void SettingField::translate() {
    const QString caption = text(m_description.labelKey, m_description.labelFallback);
    if (auto* check = qobject_cast<QCheckBox*>(m_editor))
        check->setText(caption);
    if (m_label)
        FieldLabel::setCaption(m_label, caption);
    m_editor->setAccessibleName(QString(caption).remove(u'&'));
    if (auto* spin = qobject_cast<QSpinBox*>(m_editor); spin && m_description.suffixKey)
        spin->setSuffix(text(m_description.suffixKey, m_description.suffixFallback));
    if (auto* browse = m_control->findChild<QPushButton*>(QStringLiteral("cmdBrowse"))) {
        browse->setText(text("BTN_BROWSE", "Browse…"));
        browse->setAccessibleName(browse->text() + u' ' + m_editor->accessibleName());
    }
    if (m_description.kind == Kind::Choice)
        fillChoices(value());
    if (m_description.kind == Kind::Colour)
        showColour();
}

void SettingField::fillChoices(const QString& selected) {
    auto* box = static_cast<QComboBox*>(m_editor);
    box->clear();
    for (const Choice& choice : m_description.choices())
        box->addItem(choice.label, choice.value);
    // A value the list does not offer is kept, shown as it is stored.
    if (box->findData(selected) < 0 && !selected.isEmpty())
        box->addItem(selected, selected);
    box->setCurrentIndex(std::max(0, box->findData(selected)));
}

void SettingField::load(clsPropertiesXML& settings) {
    const QString stored =
        settings.GetProp(m_description.section, m_description.key, m_description.fallback);
    if (m_description.allowedBy)
        m_control->setEnabled(settings.GetProp("preferences", m_description.allowedBy, kOn) == kOn);
    switch (m_description.kind) {
    case Kind::Check:
        static_cast<QCheckBox*>(m_editor)->setChecked(stored == kOn);
        break;
    case Kind::Number:
        static_cast<QSpinBox*>(m_editor)->setValue(int(stored.toLongLong() / m_description.scale));
        break;
    case Kind::Choice:
        fillChoices(stored);
        break;
    case Kind::Text:
    case Kind::Folder:
        static_cast<QLineEdit*>(m_editor)->setText(stored);
        break;
    case Kind::Colour:
        m_colour = stored.toLongLong();
        showColour();
        break;
    }
}

QString SettingField::value() const {
    switch (m_description.kind) {
    case Kind::Check:
        return static_cast<QCheckBox*>(m_editor)->isChecked() ? kOn : QStringLiteral("0");
    case Kind::Number:
        return QString::number(qint64(static_cast<QSpinBox*>(m_editor)->value()) *
                               m_description.scale);
    case Kind::Choice:
        return static_cast<QComboBox*>(m_editor)->currentData().toString();
    case Kind::Text:
    case Kind::Folder:
        return static_cast<QLineEdit*>(m_editor)->text().trimmed();
    case Kind::Colour:
        return QString::number(m_colour);
    }
    return QString();
}

bool SettingField::valid(QString* why) const {
    if (m_description.pattern.isEmpty())
        return true;
    const QRegularExpression shape(u'^' + m_description.pattern + u'$');
    if (shape.match(value()).hasMatch())
        return true;
    *why = text(m_description.problemKey, m_description.problemFallback);
    return false;
}

// A control the settings do not allow to change writes nothing.
void SettingField::store(clsPropertiesXML& settings) const {
    if (m_control->isEnabled())
        settings.SetProp(m_description.section, m_description.key, value());
}

void SettingField::chooseFolder() {
    auto* edit = static_cast<QLineEdit*>(m_editor);
    DialogService::FileRequest request;
    request.kind = DialogService::FileRequest::Folder;
    request.title = text(m_description.labelKey, m_description.labelFallback).remove(u'&');
    request.folder = edit->text();
    const QString folder = DialogService::fileDialog(m_control, request);
    if (!folder.isEmpty())
        edit->setText(folder);
}

void SettingField::chooseColour() {
    const QColor chosen = DialogService::colorDialog(m_control, StoredColor::toQColor(m_colour),
                                                     m_editor->accessibleName());
    if (!chosen.isValid())
        return;
    m_colour = StoredColor::fromQColor(chosen);
    showColour();
}

// The button shows the colour and says it in words a screen reader reads.
void SettingField::showColour() {
    auto* button = static_cast<QPushButton*>(m_editor);
    QPixmap swatch(32, 16);
    swatch.fill(StoredColor::toQColor(m_colour));
    QPainter frame(&swatch);
    frame.setPen(button->palette().color(QPalette::WindowText));
    frame.drawRect(swatch.rect().adjusted(0, 0, -1, -1));
    frame.end();
    button->setIcon(swatch);
    button->setText(StoredColor::toHex(m_colour));
}
