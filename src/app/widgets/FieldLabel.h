#pragma once

#include <QString>

class QLabel;
class QWidget;

// The label that names a field: Alt and its underlined letter reach the
// field, and a screen reader names the field by the label's words.
class FieldLabel {
public:
    static QLabel* create(QWidget* field, QWidget* parent);
    // Shows text with its mnemonic and names the label's field by it.
    static void setCaption(QLabel* label, const QString& text);
    // A text that names no letter gets its first.
    static QString withMnemonic(const QString& text);
};
