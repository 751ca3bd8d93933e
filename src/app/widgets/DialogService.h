#pragma once

#include <QColor>
#include <QList>
#include <QMessageBox>
#include <QString>

class QWidget;

// Every message box and file dialog of the program goes through here, so tests
// can answer one ahead of time and read what it said instead of a window
// blocking them.
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

    struct FileRequest {
        // Folder chooses a folder rather than a file.
        enum Kind { Open, Save, Folder } kind = Open;
        QString title;
        QString folder; // where it starts, with the proposed file name for Save
        QString filter; // Qt's form: "Messages (*.mms)"
        QString defaultSuffix;
        int filterIndex = 0; // the filter shown first, 0-based
        // False where the caller asks about an existing file itself, later.
        bool confirmOverwrite = true;
    };
    // A filter of the settings' form, "Description|*.a;*.b|Other|*.c", in Qt's
    // form, "Description (*.a *.b);;Other (*.c)".
    static QString qtFilter(const QString& filter);
    // The chosen file's (or folder's) path, or "" when the user cancelled;
    // chosenFilter, when given, gets the filter the user left selected.
    static QString fileDialog(QWidget* parent, const FileRequest& request,
                              int* chosenFilter = nullptr);

    struct ColorRequest {
        QString title;
        QColor initial;
    };
    // The chosen colour, or an invalid colour when the user cancelled.
    static QColor colorDialog(QWidget* parent, const QColor& initial, const QString& title);

    // The next box returns this answer at once without being shown.
    static void queueAnswer(QMessageBox::StandardButton answer);
    // The next file dialog returns this path ("" for a cancel) without being
    // shown, with filter as the chosen one (-1: the one it was opened with).
    static void queueFileAnswer(const QString& path, int filter = -1);
    static QList<FileRequest> answeredFileDialogs();
    // The next colour dialog returns this colour without being shown; an
    // invalid colour answers as a cancel.
    static void queueColorAnswer(const QColor& color);
    static QList<ColorRequest> answeredColorDialogs();
    // The boxes answered from the queue, oldest first.
    static QList<ShownBox> answeredBoxes();
    static void clear();
};
