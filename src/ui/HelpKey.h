#pragma once

#include <QObject>

// F1 in a window that waits for an answer: the main window's own Help key
// does not reach past such a dialog, so the key is heard here, before the
// dialog swallows it.
class HelpKey : public QObject {
    Q_OBJECT
public:
    explicit HelpKey(QObject* parent);

signals:
    void pressed();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
};
