#include "HelpKey.h"

#include <QApplication>
#include <QKeyEvent>

HelpKey::HelpKey(QObject* parent) : QObject(parent) {
    qApp->installEventFilter(this);
}

// Only a key that no shortcut took arrives as a key press, so the main
// window's Help is never run twice.
bool HelpKey::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress || !watched->isWidgetType())
        return false;
    const auto* key = static_cast<QKeyEvent*>(event);
    if (!key->matches(QKeySequence::HelpContents) && key->key() != Qt::Key_F1)
        return false;
    if (!QApplication::activeModalWidget())
        return false;
    emit pressed();
    return true;
}
