#pragma once

#include "DialogService.h"

#include <QDialog>
#include <QString>

class QGridLayout;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;
class clsMMSManager;

// What the export and import dialogs share: a file typed or chosen through
// the file dialog, whose filter and folder are remembered under settings keys
// of the dialog's own; a status line; a progress bar that follows the
// manager's slides while the dialog's work runs; the run button (Enter) and
// the cancel button (Escape), which says Close once a run has ended. The
// dialog cannot be closed while its work runs.
class FileJobDialog : public QDialog {
    Q_OBJECT
public:
    // Settings keys (section "preferences") of the remembered filter and folder.
    struct MemoryKeys {
        const char* filterIndex;
        const char* lastDir;
    };

    FileJobDialog(clsMMSManager& manager, MemoryKeys keys, QWidget* parent);

    // Asks for the file; false when the user cancelled.
    bool ShowFileDialog();
    // Shows the dialog, and its file dialog at once when the settings ask for it.
    void showAndAsk();
    QString fileName() const;
    void setFileName(const QString& path);
    bool isRunning() const { return m_running; }

public slots:
    virtual void TranslateForm();

protected:
    // The file dialog for this job, without its filter index and start folder.
    virtual DialogService::FileRequest fileRequest() const = 0;
    // The user chose path with filter in the file dialog.
    virtual void fileChosen(const QString& path, int /*filter*/) { setFileName(path); }
    // The work itself, from the run button.
    virtual void run() = 0;
    // What the status line says before a run: how to go about it.
    virtual QString helpText() const = 0;

    void reject() override;
    // Room for the dialog's own fields, under the file row.
    QGridLayout& fields() { return *m_fields; }
    QPushButton& runButton() { return *cmdRun; }
    void setStatus(const QString& text);
    // While running, the buttons and fields are shut and the progress bar
    // follows the manager; pumping lets the window paint between slides.
    void beginRun(const QString& status, bool pumpEvents);
    // A run that did its work (or failed at it) turns cancel into Close; one
    // that did not start (status "") shows the help text again.
    void endRun(const QString& status, bool ran);
    // The remembered filter index and folder of the file dialog.
    int rememberedFilter() const;
    void remember(const QString& path, int filter) const;
    static QString text(const char* key, const char* fallback);

private:
    void buildLayout();
    QString startFolder() const;
    void showProgress(int slide, int count);
    void setFieldsEnabled(bool enabled);

    clsMMSManager& m_manager;
    MemoryKeys m_keys;
    QLabel* lblFile;
    QLineEdit* txtFile;
    QPushButton* cmdBrowse;
    QGridLayout* m_fields;
    QLabel* lblStatus;
    QProgressBar* prgSlides;
    QPushButton* cmdRun;
    QPushButton* cmdCancel;
    bool m_running = false;
    bool m_pumpEvents = false;
    bool m_ran = false;
    bool m_showsHelp = true;
};
