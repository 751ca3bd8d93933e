#pragma once

#include "FileJobDialog.h"

class FileCommands;

// Reads a SMIL file, a template archive (".tpl") or a binary MMS (told by its
// bytes, see clsMMSManager::ImportKindOf) as a new message that
// takes the open one's place as an opened message does, after the question
// about unsaved changes. A file that cannot be read leaves the open message
// as it was.
class frmImport : public FileJobDialog {
    Q_OBJECT
public:
    frmImport(FileCommands& files, clsMMSManager& manager, QWidget* parent = nullptr);

    void TranslateForm() override;

protected:
    DialogService::FileRequest fileRequest() const override;
    void run() override;
    QString helpText() const override;

private:
    static QString filter();

    FileCommands& m_files;
    clsMMSManager& m_manager;
};
