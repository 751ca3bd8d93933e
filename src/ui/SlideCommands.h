#pragma once

#include <QObject>
#include <QString>

class MessageDocument;
class QWidget;

// The slide commands as the user gives them, from the menu bar, the strip's
// menu or the buttons: asked first when the settings say so ("AskNewSlide"
// for adding, inserting and duplicating, "AskDeleteSlide" for deleting; only
// "1" asks), then made on the document as one step each.
class SlideCommands : public QObject {
    Q_OBJECT
public:
    SlideCommands(MessageDocument& document, QWidget* window);

    // A command of the strip's menu (its numbers) for slide (1-based); false
    // for a number that is no slide command.
    bool runStripCommand(int command, int slide);
    // A command of the menu bar's Slide menu, for the current slide; false for
    // a number that is no slide command.
    bool runMenuCommand(int number);

    void add();
    void insertBefore(int slide);
    void insertAfter(int slide);
    void duplicateBefore(int slide);
    void duplicateAfter(int slide);
    void deleteSlide(int slide);

signals:
    // A slide was added at the end: the strip shows the end.
    void appendedAtEnd();

private:
    bool confirmed(const char* setting, const QString& text, const char* titleKey,
                   const char* titleFallback) const;
    void deletePart(int command, int slide);

    MessageDocument& m_document;
    QWidget* m_window;
};
