#pragma once

#include <QList>
#include <QMessageBox>
#include <QString>

class QWidget;

// Every message box of the program goes through here, so tests can answer a
// box ahead of time and read what it said instead of a window blocking them.
class DialogService {
public:
    struct ShownBox {
        QString title;
        QString text;
        QMessageBox::Icon icon;
    };

    static QMessageBox::StandardButton messageBox(QWidget* parent, const QString& text,
                                                  const QString& title,
                                                  QMessageBox::StandardButtons buttons,
                                                  QMessageBox::Icon icon);

    // The next box returns this answer at once without being shown.
    static void queueAnswer(QMessageBox::StandardButton answer);
    // The boxes answered from the queue, oldest first.
    static QList<ShownBox> answeredBoxes();
    static void clear();
};
