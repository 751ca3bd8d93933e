#include "frmExport.h"

#include "AppGlobals.h"
#include "FieldLabel.h"
#include "MessageDocument.h"
#include "clsMMSManager.h"
#include "clsMessage.h"

#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>

namespace {
constexpr int kKindCount = MessageExport::ReceivedMms + 1;
} // namespace

frmExport::frmExport(MessageDocument& document, QWidget* parent)
    : FileJobDialog(document.manager(), {"ExportFilterIndex", "ExportLastDir"}, parent),
      m_document(document), cboKind(new QComboBox(this)), cboDurations(new QComboBox(this)) {
    setObjectName(QStringLiteral("frmExport"));
    lblKind = FieldLabel::create(cboKind, this);
    lblDurations = FieldLabel::create(cboDurations, this);
    cboKind->setObjectName(QStringLiteral("cboKind"));
    cboDurations->setObjectName(QStringLiteral("cboDurations"));
    for (int kind = 0; kind < kKindCount; ++kind)
        cboKind->addItem(QString());
    cboDurations->addItem(QString());
    cboDurations->addItem(QString());
    fields().addWidget(lblKind, 1, 0);
    fields().addWidget(cboKind, 1, 1, 1, 2);
    fields().addWidget(lblDurations, 2, 0);
    fields().addWidget(cboDurations, 2, 1, 1, 2);
    setTabOrder(findChild<QPushButton*>("cmdBrowse"), cboKind);
    setTabOrder(cboKind, cboDurations);
    setTabOrder(cboDurations, &runButton());
    setKind(MessageExport::Kind(std::min(rememberedFilter(), kKindCount - 1)));
    // Durations as the user reads them in the window, unless chosen otherwise here.
    cboDurations->setCurrentIndex(
        AppGlobals::setting("preferences", "MMSTimeFormat", "ms") == QLatin1String("s") ? 1 : 0);
    connect(cboKind, &QComboBox::currentIndexChanged, this, &frmExport::followKind);
    TranslateForm();
}

QString frmExport::filter() {
    return text("STR_EXPORT_FILTER", "SMIL file (*.smil)|*.smil|Corvane template file "
                                     "(*.tpl)|*.tpl") +
           u'|' +
           text("STR_EXPORT_FILTER_MORE",
                "Installation package (*.SIS)|*.SIS|Binary MMS as sent (*.wap)|*.wap|Binary MMS "
                "as received (*.wap)|*.wap");
}

void frmExport::TranslateForm() {
    FileJobDialog::TranslateForm();
    setWindowTitle(text("STR_EXPORT_CAPTION", "Export message"));
    FieldLabel::setCaption(lblKind, text("STR_EXPORT_KIND", "Export &as"));
    FieldLabel::setCaption(lblDurations, text("STR_EXPORT_DURATIONS", "&Durations in"));
    const QStringList parts = filter().split(u'|');
    for (int kind = 0; kind < kKindCount; ++kind)
        cboKind->setItemText(kind, parts.value(2 * kind));
    cboDurations->setItemText(0, text("STR_EXPORT_MILLISECONDS", "Milliseconds (2500ms)"));
    cboDurations->setItemText(1, text("STR_EXPORT_SECONDS", "Seconds (2.500s)"));
    runButton().setText(FieldLabel::withMnemonic(text("BTN_EXPORT", "&Export")));
}

QString frmExport::helpText() const {
    return text("STR_EXPORT_HELP1",
                "Choose the target file and the export format, then click Export.");
}

MessageExport::Kind frmExport::kind() const {
    return MessageExport::Kind(cboKind->currentIndex());
}

void frmExport::setKind(MessageExport::Kind kind) {
    cboKind->setCurrentIndex(kind);
}

DialogService::FileRequest frmExport::fileRequest() const {
    DialogService::FileRequest request;
    request.kind = DialogService::FileRequest::Save;
    request.title = text("STR_EXPORT_CAPTION", "Export message");
    request.filter = DialogService::qtFilter(filter());
    // The export asks itself before it replaces a file.
    request.confirmOverwrite = false;
    return request;
}

void frmExport::fileChosen(const QString& path, int filter) {
    setFileName(path);
    setKind(MessageExport::Kind(std::clamp(filter, 0, kKindCount - 1)));
    setFileName(target());
}

// A file named for the former kind is named for the new one.
void frmExport::followKind() {
    const QString path = fileName();
    for (int other = 0; other < kKindCount; ++other) {
        const QString extension = MessageExport::extension(MessageExport::Kind(other));
        if (path.endsWith(extension, Qt::CaseInsensitive)) {
            setFileName(path.chopped(extension.size()) + MessageExport::extension(kind()));
            return;
        }
    }
}

QString frmExport::target() const {
    const QString path = fileName();
    const QString extension = MessageExport::extension(kind());
    return QFileInfo(path.endsWith(extension, Qt::CaseInsensitive) ? path : path + extension)
        .absoluteFilePath();
}

void frmExport::run() {
    clsMessage* message = m_document.message();
    if (!message)
        return setStatus(text("STR_EXPORT_NOMSG", "There is no open message to export."));
    const QString path = target();
    setFileName(path);
    remember(path, kind());
    beginRun(text("STR_EXPORTING", "Exporting the message…"), true);
    const QString status = exportTo(*message, path);
    endRun(status, !status.isEmpty());
}

QString frmExport::exportTo(clsMessage& message, const QString& path) {
    MessageExport exporter(m_document.manager());
    const int durations = cboDurations->currentIndex();
    int result = exporter.run(message, kind(), durations, path, false, MessageExport::OutputOnly);
    if (result == clsMMSManager::ExportExists) {
        const auto answer = DialogService::messageBox(
            this,
            AppGlobals::text("STR_EXPORT_OVERWRITE", "The file %0 already exists! %nOverwrite it?",
                             {QFileInfo(path).fileName()}),
            text("APP_PRODUCTNAME", "Vellumo"), QMessageBox::Yes | QMessageBox::No,
            QMessageBox::Question);
        if (answer != QMessageBox::Yes)
            return QString();
        result = exporter.run(message, kind(), durations, path, true, MessageExport::OutputOnly);
    }
    if (result != clsMMSManager::ExportOk)
        return text("STR_EXPORT_FAILED", "The message cannot be exported to the selected file.") +
               "\n\n" + exporter.status();
    QStringList lines{text("STR_EXPORT_READY", "The message has been exported."),
                      QDir::toNativeSeparators(path)};
    return (lines + m_document.manager().exportImportNotes()).join(u'\n');
}
