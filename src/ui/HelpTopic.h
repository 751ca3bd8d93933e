#pragma once

#include <QString>
#include <QStringList>

class QWidget;

// Which help page tells of what the user is looking at: the control with
// the focus in the window in front, or the nearest window or panel around
// it that has a page. Topics are written as HelpPages takes them:
// "settings.html#phone", "#help", or "" for the contents.
class HelpTopic {
public:
    static QString of(const QWidget* window);
    // Every topic a window or panel leads to.
    static QStringList all();

private:
    static const QWidget* start(const QWidget* window);
};
