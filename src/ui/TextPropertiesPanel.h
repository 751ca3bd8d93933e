#pragma once

#include "clsDrawObject.h"

#include <QKeySequence>
#include <QWidget>
#include <functional>

class QButtonGroup;
class QFontComboBox;
class QLabel;
class QPushButton;
class QSpinBox;
class QToolButton;

// Beside the picture editor: the font, size, style, alignment and colour of
// the selected text object. Each change the user makes is handed on as the
// whole object with that one change, so the editor can undo it as one step.
class TextPropertiesPanel : public QWidget {
    Q_OBJECT
public:
    explicit TextPropertiesPanel(QWidget* parent = nullptr);
    ~TextPropertiesPanel() override;

    void TranslateControl();
    // Shows the text object's look; nullptr when no text object is selected.
    void showText(const DrawObjectProperties* text);

signals:
    void propertiesEdited(const DrawObjectProperties& changed);

private:
    QToolButton* toolButton(const char* name, const QIcon& icon);
    QToolButton* styleButton(const char* name, const QString& icon, QKeySequence::StandardKey key,
                             void (QFont::*setStyle)(bool));
    QToolButton* alignButton(const char* name, const QString& icon, int stored, Qt::Alignment side);
    void buildLayout();
    void connectEdits();
    void translateButtons();

    void showValues(const DrawObjectProperties& text);
    void showColor(qint64 stored);
    void edit(const std::function<void(DrawObjectProperties&)>& change);
    void fontPicked();
    void alignmentClicked(int stored);
    void chooseColor();

    QLabel* lblNoText;
    QWidget* m_fields;
    QFontComboBox* cboFont;
    QSpinBox* spnFontSize;
    QToolButton* chkBold;
    QToolButton* chkItalic;
    QToolButton* chkUnderline;
    QButtonGroup* m_alignment;
    QToolButton* optAlignLeft;
    QToolButton* optAlignCenter;
    QToolButton* optAlignRight;
    QPushButton* cmdColor;
    QLabel* lblFont;
    QLabel* lblSize;
    QLabel* lblStyle;
    QLabel* lblAlignment;
    QLabel* lblColor;
    DrawObjectProperties m_text;
};
