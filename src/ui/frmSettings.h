#pragma once

#include "SettingField.h"
#include "SettingsCatalogue.h"

#include <QDialog>
#include <memory>
#include <vector>

class QDialogButtonBox;
class QTabWidget;

// The settings a user may change, on tabs. Nothing is written until Apply or
// OK, and then only when every value is good; Cancel leaves the settings as
// they were. The window that opened it applies what was written.
class frmSettings : public QDialog {
    Q_OBJECT
public:
    explicit frmSettings(QWidget* parent = nullptr);
    ~frmSettings() override;

    // The control of a setting, by its key, for whoever drives the dialog.
    QWidget* control(const QString& key) const;

public slots:
    void TranslateForm();

signals:
    // The settings were written; the program takes them on now.
    void applied();

private:
    void buildTab(const SettingsCatalogue::Tab& tab);
    bool apply();
    bool allValid();
    void keepTab();

    QTabWidget* tabSettings;
    QDialogButtonBox* m_buttons;
    std::vector<std::unique_ptr<SettingField>> m_fields;
    QList<std::pair<const char*, const char*>> m_tabTitles;
};
