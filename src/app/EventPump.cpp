#include "EventPump.h"

#include <QCoreApplication>

void pumpEvents() {
    if (QCoreApplication::instance())
        QCoreApplication::processEvents(QEventLoop::AllEvents);
}
