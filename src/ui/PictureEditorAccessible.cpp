#include "PictureEditorAccessible.h"

#include "DrawObjectAccessible.h"
#include "ctlPictureEditor.h"

namespace {
QAccessibleInterface* forEditor(const QString& className, QObject* object) {
    if (className == QLatin1String("ctlPictureEditor") && object && object->isWidgetType())
        return new PictureEditorAccessible(static_cast<ctlPictureEditor*>(object));
    return nullptr;
}
} // namespace

PictureEditorAccessible::PictureEditorAccessible(ctlPictureEditor* editor)
    : QAccessibleWidget(editor, QAccessible::Canvas) {}

PictureEditorAccessible::~PictureEditorAccessible() {
    for (QAccessibleInterface* object : std::as_const(m_objects))
        QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(object));
}

void PictureEditorAccessible::install() {
    static const bool installed = [] {
        QAccessible::installFactory(forEditor);
        return true;
    }();
    Q_UNUSED(installed);
}

ctlPictureEditor* PictureEditorAccessible::editor() const {
    return static_cast<ctlPictureEditor*>(widget());
}

int PictureEditorAccessible::objectCount() const {
    return int(editor()->shownObjects().size());
}

int PictureEditorAccessible::childCount() const {
    return objectCount() + QAccessibleWidget::childCount();
}

QAccessibleInterface* PictureEditorAccessible::objectChild(int place) const {
    while (m_objects.size() <= place) {
        auto* object = new DrawObjectAccessible(
            editor(), const_cast<PictureEditorAccessible*>(this), int(m_objects.size()));
        QAccessible::registerAccessibleInterface(object);
        m_objects.append(object);
    }
    return m_objects.at(place);
}

QAccessibleInterface* PictureEditorAccessible::child(int index) const {
    const int objects = objectCount();
    if (index < 0)
        return nullptr;
    return index < objects ? objectChild(index) : QAccessibleWidget::child(index - objects);
}

int PictureEditorAccessible::indexOfChild(const QAccessibleInterface* child) const {
    const qsizetype place = m_objects.indexOf(const_cast<QAccessibleInterface*>(child));
    if (place >= 0)
        return place < objectCount() ? int(place) : -1;
    const int widgetPlace = QAccessibleWidget::indexOfChild(child);
    return widgetPlace < 0 ? -1 : objectCount() + widgetPlace;
}

QAccessibleInterface* PictureEditorAccessible::childAt(int x, int y) const {
    if (QAccessibleInterface* control = QAccessibleWidget::childAt(x, y))
        return control;
    const QPoint at = editor()->mapFromGlobal(QPoint(x, y));
    const QList<ctlPictureEditor::ShownObject> shown = editor()->shownObjects();
    for (int place = int(shown.size()) - 1; place >= 0; --place)
        if (shown[place].rect.contains(at))
            return objectChild(place);
    return nullptr;
}

QAccessibleInterface* PictureEditorAccessible::focusChild() const {
    const QList<ctlPictureEditor::ShownObject> shown = editor()->shownObjects();
    for (int place = 0; place < shown.size(); ++place)
        if (shown[place].index == editor()->selectedObject() && editor()->hasFocus())
            return objectChild(place);
    return QAccessibleWidget::focusChild();
}
