#include "DialogService.h"

#include <QColorDialog>
#include <QFileDialog>
#include <QFileInfo>
#include <QQueue>
#include <algorithm>

namespace {
struct Script {
    QQueue<QMessageBox::StandardButton> answers;
    QList<DialogService::ShownBox> answered;
    QQueue<QPair<QString, int>> files;
    QList<DialogService::FileRequest> fileRequests;
    QQueue<QColor> colors;
    QList<DialogService::ColorRequest> colorRequests;
};

Script& script() {
    static Script instance;
    return instance;
}
} // namespace

QMessageBox::StandardButton DialogService::messageBox(QWidget* parent, const QString& text,
                                                      const QString& title,
                                                      QMessageBox::StandardButtons buttons,
                                                      QMessageBox::Icon icon) {
    if (!script().answers.isEmpty()) {
        script().answered.append({title, text, icon});
        return script().answers.dequeue();
    }
    QMessageBox box(icon, title, text, buttons, parent);
    return static_cast<QMessageBox::StandardButton>(box.exec());
}

QString DialogService::fileDialog(QWidget* parent, const FileRequest& request, int* chosenFilter) {
    int unused = 0;
    int& filter = chosenFilter ? *chosenFilter : unused;
    if (!script().files.isEmpty()) {
        script().fileRequests.append(request);
        const auto [path, queuedFilter] = script().files.dequeue();
        filter = queuedFilter < 0 ? request.filterIndex : queuedFilter;
        return path;
    }
    QFileDialog dialog(parent, request.title, request.folder, request.filter);
    const QStringList filters = request.filter.split(QStringLiteral(";;"));
    dialog.selectNameFilter(filters.value(request.filterIndex));
    const bool save = request.kind == FileRequest::Save;
    dialog.setAcceptMode(save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(request.kind == FileRequest::Folder ? QFileDialog::Directory
                       : save                              ? QFileDialog::AnyFile
                                                           : QFileDialog::ExistingFile);
    dialog.setDefaultSuffix(request.defaultSuffix);
    dialog.setOption(QFileDialog::DontConfirmOverwrite, !request.confirmOverwrite);
    if (save && !QFileInfo(request.folder).isDir())
        dialog.selectFile(request.folder);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return QString();
    filter = std::max(0, int(filters.indexOf(dialog.selectedNameFilter())));
    return dialog.selectedFiles().first();
}

QColor DialogService::colorDialog(QWidget* parent, const QColor& initial, const QString& title) {
    if (!script().colors.isEmpty()) {
        script().colorRequests.append({title, initial});
        return script().colors.dequeue();
    }
    QColorDialog dialog(initial, parent);
    dialog.setWindowTitle(title);
    return dialog.exec() == QDialog::Accepted ? dialog.selectedColor() : QColor();
}

QString DialogService::qtFilter(const QString& filter) {
    const QStringList parts = filter.split(u'|');
    QStringList entries;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        // Qt reads the patterns from the parentheses, separated by spaces; a
        // description that lists them its own way ("(*.bmp;*.gif)") is
        // given the list Qt reads.
        const QString patterns = QString(parts[i + 1]).replace(u';', u' ');
        entries << parts[i].section(u'(', 0, 0).trimmed() + " (" + patterns + u')';
    }
    return entries.isEmpty() ? filter : entries.join(QStringLiteral(";;"));
}

void DialogService::queueFileAnswer(const QString& path, int filter) {
    script().files.enqueue({path, filter});
}

QList<DialogService::FileRequest> DialogService::answeredFileDialogs() {
    return script().fileRequests;
}

void DialogService::queueColorAnswer(const QColor& color) {
    script().colors.enqueue(color);
}

QList<DialogService::ColorRequest> DialogService::answeredColorDialogs() {
    return script().colorRequests;
}

void DialogService::queueAnswer(QMessageBox::StandardButton answer) {
    script().answers.enqueue(answer);
}

QList<DialogService::ShownBox> DialogService::answeredBoxes() {
    return script().answered;
}

void DialogService::clear() {
    script().answers.clear();
    script().answered.clear();
    script().files.clear();
    script().fileRequests.clear();
    script().colors.clear();
    script().colorRequests.clear();
}
