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
    };
    // A filter of the settings' form, "Description|*.a;*.b|Other|*.c", in Qt's
    // form, "Description (*.a *.b);;Other (*.c)".
    static QString qtFilter(const QString& filter);
    // The chosen file's (or folder's) path, or "" when the user cancelled.
    static QString fileDialog(QWidget* parent, const FileRequest& request);

    struct ColorRequest {
        QString title;
        QColor initial;
    };
    // The chosen colour, or an invalid colour when the user cancelled.
    static QColor colorDialog(QWidget* parent, const QColor& initial, const QString& title);

    // The next box returns this answer at once without being shown.
    static void queueAnswer(QMessageBox::StandardButton answer);
    // The next file dialog returns this path ("" for a cancel) without being shown.
    static void queueFileAnswer(const QString& path);
    static QList<FileRequest> answeredFileDialogs();
    // The next colour dialog returns this colour without being shown; an
    // invalid colour answers as a cancel.
    static void queueColorAnswer(const QColor& color);
    static QList<ColorRequest> answeredColorDialogs();
    // The boxes answered from the queue, oldest first.
    static QList<ShownBox> answeredBoxes();
    static void clear();
};
