#include "FieldLabel.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>

QLabel* FieldLabel::create(QWidget* field, QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setBuddy(field);
    return label;
}

void FieldLabel::setCaption(QLabel* label, const QString& text) {
    label->setText(withMnemonic(text));
    const QString name = QString(text).remove(u'&');
    label->buddy()->setAccessibleName(name);
    // An editable list's text field is a control of its own to a screen
    // reader, which would otherwise meet it without a name.
    if (auto* list = qobject_cast<QComboBox*>(label->buddy()); list && list->lineEdit())
        list->lineEdit()->setAccessibleName(name);
}

QString FieldLabel::withMnemonic(const QString& text) {
    return text.contains(u'&') ? text : u'&' + text;
}
