#pragma once

#include <QAccessibleInterface>
#include <QPointer>

class ctlPictureEditor;

// One draw object of the picture editor to accessibility clients: the object
// at a place in the stack, read afresh from the editor each time, so it never
// tells of an object that has gone.
class DrawObjectAccessible : public QAccessibleInterface {
public:
    DrawObjectAccessible(ctlPictureEditor* editor, QAccessibleInterface* parent, int place);

    bool isValid() const override;
    QObject* object() const override { return nullptr; }
    QWindow* window() const override;
    QAccessibleInterface* focusChild() const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    QAccessibleInterface* parent() const override { return m_parent; }
    QAccessibleInterface* child(int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text, const QString&) override {}
    QRect rect() const override;
    QAccessible::Role role() const override;
    QAccessible::State state() const override;

private:
    QPointer<ctlPictureEditor> m_editor;
    QAccessibleInterface* m_parent;
    int m_place;
};
