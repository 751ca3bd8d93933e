#include "frmSettings.h"

#include "AppGlobals.h"
#include "DialogService.h"
#include "SettingsCatalogue.h"
#include "clsPropertiesXML.h"
#include "clsXMLocalizer.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>

namespace {
QString text(const char* key, const char* fallback) {
    return AppGlobals::text(key, fallback);
}
} // namespace

frmSettings::frmSettings(QWidget* parent)
    : QDialog(parent), tabSettings(new QTabWidget),
      m_buttons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Apply |
                                     QDialogButtonBox::Cancel)) {
    setObjectName(QStringLiteral("frmSettings"));
    tabSettings->setObjectName(QStringLiteral("tabSettings"));
    for (const SettingsCatalogue::Tab& tab : SettingsCatalogue::tabs())
        buildTab(tab);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(tabSettings);
    layout->addWidget(m_buttons);
    // Room for a folder's whole path.
    setMinimumWidth(640);
    if (clsPropertiesXML* settings = AppGlobals::settings())
        for (const auto& field : m_fields)
            field->load(*settings);
    tabSettings->setCurrentIndex(AppGlobals::setting("preferences", "SettingsTab", "0").toInt());
    connect(m_buttons->button(QDialogButtonBox::Apply), &QPushButton::clicked, this,
            &frmSettings::apply);
    connect(m_buttons, &QDialogButtonBox::accepted, this, [this] {
        if (apply())
            accept();
    });
    connect(m_buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(this, &QDialog::finished, this, &frmSettings::keepTab);
    TranslateForm();
}

frmSettings::~frmSettings() = default;

void frmSettings::buildTab(const SettingsCatalogue::Tab& tab) {
    auto* page = new QWidget;
    page->setObjectName(QLatin1String(tab.name));
    auto* form = new QFormLayout(page);
    for (const SettingField::Description& description : tab.fields) {
        auto& field = m_fields.emplace_back(std::make_unique<SettingField>(description));
        if (field->label())
            form->addRow(field->label(), field->control());
        else
            form->addRow(field->control());
    }
    tabSettings->addTab(page, QString());
    m_tabTitles << std::pair{tab.titleKey, tab.titleFallback};
}

QWidget* frmSettings::control(const QString& key) const {
    for (const auto& field : m_fields)
        if (field->description().key == key)
            return field->control();
    return nullptr;
}

void frmSettings::TranslateForm() {
    setWindowTitle(text("STR_SETTINGS_TITLE", "Settings"));
    for (int tab = 0; tab < m_tabTitles.size(); ++tab)
        tabSettings->setTabText(tab, text(m_tabTitles[tab].first, m_tabTitles[tab].second));
    tabSettings->setAccessibleName(windowTitle());
    for (const auto& field : m_fields)
        field->translate();
    m_buttons->button(QDialogButtonBox::Ok)->setText(text("BTN_OK", "OK"));
    m_buttons->button(QDialogButtonBox::Apply)->setText(text("BTN_APPLY", "&Apply"));
    m_buttons->button(QDialogButtonBox::Cancel)->setText(text("BTN_CANCEL", "Cancel"));
}

// Every value is looked at before one is written; the first bad one is shown
// with what is wrong.
bool frmSettings::allValid() {
    for (const auto& field : m_fields) {
        QString why;
        if (field->valid(&why))
            continue;
        for (int tab = 0; tab < tabSettings->count(); ++tab)
            if (tabSettings->widget(tab)->isAncestorOf(field->control()))
                tabSettings->setCurrentIndex(tab);
        field->control()->setFocus();
        DialogService::messageBox(this, why, windowTitle(), QMessageBox::Ok, QMessageBox::Warning);
        return false;
    }
    return true;
}

// The settings are written at once, so they outlive a program that does not
// end well; a file that cannot be written is said.
bool frmSettings::apply() {
    clsPropertiesXML* settings = AppGlobals::settings();
    if (!settings || !allValid())
        return false;
    for (const auto& field : m_fields)
        field->store(*settings);
    settings->SetProp("preferences", "SettingsTab", QString::number(tabSettings->currentIndex()));
    if (!settings->SaveXmlFile())
        DialogService::messageBox(
            this,
            AppGlobals::text("STR_SETTINGS_NOT_SAVED",
                             "The settings cannot be written to %0. They hold until the "
                             "program ends.",
                             {settings->XmlFileName()}),
            windowTitle(), QMessageBox::Ok, QMessageBox::Warning);
    emit applied();
    // What applying changed (a new language, new picture sizes) is shown anew.
    for (const auto& field : m_fields)
        field->load(*settings);
    return true;
}

// The tab is remembered for the next time, without writing the file.
void frmSettings::keepTab() {
    if (clsPropertiesXML* settings = AppGlobals::settings())
        settings->SetProp("preferences", "SettingsTab",
                          QString::number(tabSettings->currentIndex()));
}
