#pragma once

#include "FileJobDialog.h"
#include "MessageExport.h"

class MessageDocument;
class QComboBox;
class QLabel;

// Writes the open message to a file the user chooses: as a SMIL set, a
// template, an installation package or a binary MMS as sent or as received,
// with the durations in milliseconds or seconds. An existing file is replaced
// only when the user says so; a failed export leaves nothing of itself.
class frmExport : public FileJobDialog {
    Q_OBJECT
public:
    explicit frmExport(MessageDocument& document, QWidget* parent = nullptr);

    void TranslateForm() override;
    MessageExport::Kind kind() const;
    void setKind(MessageExport::Kind kind);

protected:
    DialogService::FileRequest fileRequest() const override;
    void fileChosen(const QString& path, int filter) override;
    void run() override;
    QString helpText() const override;

private:
    // The kinds in the order of the file dialog's filter, "description|pattern|...".
    static QString filter();
    // The file with the kind's extension, added when the user left it off.
    QString target() const;
    void followKind();
    // Exports, asking before an existing file is replaced; "" when the user
    // would not replace it, else the status to show.
    QString exportTo(clsMessage& message, const QString& path);

    MessageDocument& m_document;
    QLabel* lblKind;
    QComboBox* cboKind;
    QLabel* lblDurations;
    QComboBox* cboDurations;
};
