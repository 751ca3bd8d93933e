#include "FieldLabel.h"

#include <QLabel>

QLabel* FieldLabel::create(QWidget* field, QWidget* parent) {
    auto* label = new QLabel(parent);
    label->setBuddy(field);
    return label;
}

void FieldLabel::setCaption(QLabel* label, const QString& text) {
    label->setText(withMnemonic(text));
    label->buddy()->setAccessibleName(QString(text).remove(u'&'));
}

QString FieldLabel::withMnemonic(const QString& text) {
    return text.contains(u'&') ? text : u'&' + text;
}
