#include "DrawObjectAccessible.h"

#include "ctlPictureEditor.h"

#include <QWidget>

DrawObjectAccessible::DrawObjectAccessible(ctlPictureEditor* editor, QAccessibleInterface* parent,
                                           int place)
    : m_editor(editor), m_parent(parent), m_place(place) {}

bool DrawObjectAccessible::isValid() const {
    return m_editor && m_place < m_editor->shownObjects().size();
}

QWindow* DrawObjectAccessible::window() const {
    return m_parent ? m_parent->window() : nullptr;
}

QString DrawObjectAccessible::text(QAccessible::Text kind) const {
    if (!isValid() || kind != QAccessible::Name)
        return QString();
    return m_editor->shownObjects().at(m_place).name;
}

QRect DrawObjectAccessible::rect() const {
    if (!isValid())
        return QRect();
    const QRect shown = m_editor->shownObjects().at(m_place).rect;
    return QRect(m_editor->mapToGlobal(shown.topLeft()), shown.size());
}

QAccessible::Role DrawObjectAccessible::role() const {
    return isValid() && m_editor->shownObjects().at(m_place).isText ? QAccessible::StaticText
                                                                    : QAccessible::Graphic;
}

QAccessible::State DrawObjectAccessible::state() const {
    QAccessible::State state;
    if (!isValid()) {
        state.invalid = true;
        return state;
    }
    state.selectable = true;
    state.focusable = true;
    const bool selected = m_editor->shownObjects().at(m_place).index == m_editor->selectedObject();
    state.selected = selected;
    state.focused = selected && m_editor->hasFocus();
    return state;
}
