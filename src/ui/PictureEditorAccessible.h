#pragma once

#include <QAccessibleWidget>
#include <QList>

class ctlPictureEditor;

// The slide picture as a screen reader sees it: one child per draw object,
// in stacking order from the bottom, each named by its text or file name,
// followed by the editor's own child controls (the box for typing into a
// text). Objects are no widgets, so their interfaces are made here and kept
// for the editor's lifetime, one per place in the stack.
class PictureEditorAccessible : public QAccessibleWidget {
public:
    explicit PictureEditorAccessible(ctlPictureEditor* editor);
    ~PictureEditorAccessible() override;

    // Makes the editor's objects known to accessibility clients.
    static void install();

    int childCount() const override;
    QAccessibleInterface* child(int index) const override;
    int indexOfChild(const QAccessibleInterface* child) const override;
    QAccessibleInterface* childAt(int x, int y) const override;
    QAccessibleInterface* focusChild() const override;

    ctlPictureEditor* editor() const;
    int objectCount() const;

private:
    QAccessibleInterface* objectChild(int place) const;

    mutable QList<QAccessibleInterface*> m_objects;
};
