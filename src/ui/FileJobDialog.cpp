#include "FileJobDialog.h"

#include "AppGlobals.h"
#include "EventPump.h"
#include "FieldLabel.h"
#include "clsMMSManager.h"
#include "clsPropertiesXML.h"

#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QStandardPaths>

FileJobDialog::FileJobDialog(clsMMSManager& manager, MemoryKeys keys, QWidget* parent)
    : QDialog(parent), m_manager(manager), m_keys(keys), txtFile(new QLineEdit(this)),
      cmdBrowse(new QPushButton(this)), m_fields(new QGridLayout), lblStatus(new QLabel(this)),
      prgSlides(new QProgressBar(this)), cmdRun(new QPushButton(this)),
      cmdCancel(new QPushButton(this)) {
    lblFile = FieldLabel::create(txtFile, this);
    txtFile->setObjectName(QStringLiteral("txtFile"));
    txtFile->setMinimumWidth(fontMetrics().averageCharWidth() * 50);
    cmdBrowse->setObjectName(QStringLiteral("cmdBrowse"));
    cmdBrowse->setAutoDefault(false);
    lblStatus->setObjectName(QStringLiteral("lblStatus"));
    lblStatus->setWordWrap(true);
    lblStatus->setTextInteractionFlags(Qt::TextSelectableByMouse);
    lblStatus->setMinimumHeight(fontMetrics().lineSpacing() * 4);
    lblStatus->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    prgSlides->setObjectName(QStringLiteral("prgSlides"));
    // Empty and silent until a run counts its slides.
    prgSlides->setRange(0, 1);
    prgSlides->setValue(0);
    prgSlides->setTextVisible(false);
    cmdRun->setObjectName(QStringLiteral("cmdRun"));
    cmdRun->setDefault(true);
    cmdRun->setEnabled(false);
    cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
    cmdCancel->setAutoDefault(false);
    buildLayout();
    connect(txtFile, &QLineEdit::textChanged, this,
            [this](const QString& path) { cmdRun->setEnabled(!path.trimmed().isEmpty()); });
    connect(cmdBrowse, &QPushButton::clicked, this, &FileJobDialog::ShowFileDialog);
    connect(cmdRun, &QPushButton::clicked, this, [this] { run(); });
    connect(cmdCancel, &QPushButton::clicked, this, &FileJobDialog::reject);
    connect(&m_manager, &clsMMSManager::ProsessingSlide, this, &FileJobDialog::showProgress);
}

void FileJobDialog::buildLayout() {
    m_fields->addWidget(lblFile, 0, 0);
    m_fields->addWidget(txtFile, 0, 1);
    m_fields->addWidget(cmdBrowse, 0, 2);
    m_fields->setColumnStretch(1, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch();
    buttons->addWidget(cmdRun);
    buttons->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(m_fields);
    layout->addWidget(lblStatus, 1);
    layout->addWidget(prgSlides);
    layout->addLayout(buttons);
}

QString FileJobDialog::text(const char* key, const char* fallback) {
    return AppGlobals::text(key, fallback);
}

void FileJobDialog::TranslateForm() {
    FieldLabel::setCaption(lblFile, text("STR_EXPORT_IMPORT_FILE", "&File"));
    cmdBrowse->setText(FieldLabel::withMnemonic(text("BTN_BROWSE", "Browse…")));
    cmdCancel->setText(FieldLabel::withMnemonic(m_ran ? text("BTN_CLOSE", "Close")
                                                      : text("BTN_CANCEL", "Cancel")));
    lblStatus->setAccessibleName(text("STR_EXPORT_IMPORT_STATUS", "Status"));
    prgSlides->setAccessibleName(text("STR_PROGRESS", "Progress"));
    prgSlides->setFormat(text("STR_EXPORT_IMPORT_PROGRESS", "Slide %v of %m"));
    if (m_showsHelp)
        lblStatus->setText(helpText());
}

QString FileJobDialog::fileName() const {
    return txtFile->text().trimmed();
}

void FileJobDialog::setFileName(const QString& path) {
    txtFile->setText(QDir::toNativeSeparators(path));
}

void FileJobDialog::showAndAsk() {
    show();
    raise();
    activateWindow();
    if (AppGlobals::setting("preferences", "AutoShowExportImportFileDlg", "1") ==
        QLatin1String("1"))
        ShowFileDialog();
}

bool FileJobDialog::ShowFileDialog() {
    DialogService::FileRequest request = fileRequest();
    request.filterIndex = rememberedFilter();
    // The file typed so far is where the user is; else where they were last.
    const QString typed = fileName();
    request.folder = typed.isEmpty() ? startFolder() : QFileInfo(typed).absoluteFilePath();
    int filter = request.filterIndex;
    const QString path = DialogService::fileDialog(this, request, &filter);
    if (path.isEmpty())
        return false;
    remember(path, filter);
    fileChosen(path, filter);
    txtFile->setFocus();
    return true;
}

QString FileJobDialog::startFolder() const {
    const QString last = AppGlobals::setting("preferences", m_keys.lastDir, QString());
    return QFileInfo(last).isDir()
               ? last
               : QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation);
}

int FileJobDialog::rememberedFilter() const {
    return std::max(0, AppGlobals::setting("preferences", m_keys.filterIndex, "0").toInt());
}

void FileJobDialog::remember(const QString& path, int filter) const {
    clsPropertiesXML* settings = AppGlobals::settings();
    if (!settings)
        return;
    settings->SetProp("preferences", m_keys.filterIndex, QString::number(filter));
    settings->SetProp("preferences", m_keys.lastDir, QFileInfo(path).absolutePath());
}

void FileJobDialog::setStatus(const QString& text) {
    m_showsHelp = text.isEmpty();
    lblStatus->setText(m_showsHelp ? helpText() : text);
}

void FileJobDialog::beginRun(const QString& status, bool pumpEvents) {
    m_running = true;
    m_pumpEvents = pumpEvents;
    setFieldsEnabled(false);
    prgSlides->setValue(0);
    setStatus(status);
    // The status is seen before the work starts, whether or not events run.
    lblStatus->repaint();
}

void FileJobDialog::endRun(const QString& status, bool ran) {
    m_running = false;
    m_ran = m_ran || ran;
    setFieldsEnabled(true);
    setStatus(status);
    TranslateForm();
    if (ran)
        cmdCancel->setFocus();
}

void FileJobDialog::setFieldsEnabled(bool enabled) {
    for (QWidget* control : findChildren<QWidget*>())
        if (control != prgSlides && !qobject_cast<QLabel*>(control))
            control->setEnabled(enabled);
    cmdRun->setEnabled(enabled && !fileName().isEmpty());
}

// Only the dialog's own runs move its bar: the window exports for its preview too.
void FileJobDialog::showProgress(int slide, int count) {
    if (!m_running)
        return;
    prgSlides->setRange(0, std::max(count, 1));
    prgSlides->setValue(slide);
    prgSlides->setTextVisible(true);
    if (m_pumpEvents)
        pumpEvents();
    else
        prgSlides->repaint();
}

void FileJobDialog::reject() {
    if (!m_running)
        QDialog::reject();
}
