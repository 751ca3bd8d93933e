#include "DialogService.h"

#include <QQueue>

namespace {
struct Script {
    QQueue<QMessageBox::StandardButton> answers;
    QList<DialogService::ShownBox> answered;
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

void DialogService::queueAnswer(QMessageBox::StandardButton answer) {
    script().answers.enqueue(answer);
}

QList<DialogService::ShownBox> DialogService::answeredBoxes() {
    return script().answered;
}

void DialogService::clear() {
    script().answers.clear();
    script().answered.clear();
}
