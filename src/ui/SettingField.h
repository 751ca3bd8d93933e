#pragma once

#include <QList>
#include <QString>
#include <functional>

class QLabel;
class QWidget;
class clsPropertiesXML;

// One setting as the settings dialog edits it: the control that shows it,
// read from and written to the settings store. Values are checked before
// anything is written, so a bad value leaves every setting as it was.
class SettingField {
public:
    enum class Kind { Check, Number, Choice, Text, Folder, Colour };
    struct Choice {
        QString value;
        QString label;
    };
    struct Description {
        QString section = QStringLiteral("preferences");
        QString key;
        QString fallback;
        Kind kind = Kind::Check;
        const char* labelKey = "";
        const char* labelFallback = "";
        // Number: the range shown, and how many stored units one shown unit is.
        int minimum = 0;
        int maximum = 0;
        int scale = 1;
        const char* suffixKey = nullptr;
        const char* suffixFallback = "";
        // Choice: the values offered, asked anew whenever the texts change.
        std::function<QList<Choice>()> choices;
        // Text: what a value must look like, and what the user is told when
        // it does not.
        QString pattern;
        const char* problemKey = nullptr;
        const char* problemFallback = "";
        // A setting that must be "1" for this one to be changed.
        const char* allowedBy = nullptr;
    };

    explicit SettingField(Description description);
    ~SettingField();
    SettingField(const SettingField&) = delete;
    SettingField& operator=(const SettingField&) = delete;

    const Description& description() const { return m_description; }
    // The control, and its label (none for a check box, which names itself).
    QWidget* control() const { return m_control; }
    QLabel* label() const { return m_label; }
    void load(clsPropertiesXML& settings);
    QString value() const;
    // False, with *why for the user, when the value cannot be stored.
    bool valid(QString* why) const;
    void store(clsPropertiesXML& settings) const;
    void translate();

private:
    QWidget* makeControl();
    QWidget* makeFolderControl();
    void chooseFolder();
    void chooseColour();
    void showColour();
    void fillChoices(const QString& selected);

    Description m_description;
    QWidget* m_control = nullptr;
    QWidget* m_editor = nullptr;
    QLabel* m_label = nullptr;
    qint64 m_colour = 0;
};
