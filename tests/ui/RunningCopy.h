#pragma once

#include "SingleInstance.h"

#include <QMetaObject>
#include <QMutex>
#include <QMutexLocker>
#include <QTest>
#include <QThread>

// A first copy answering from a thread of its own, as another process would
// while the copy under test blocks waiting for its answer.
class RunningCopy {
public:
    explicit RunningCopy(const QString& serverName) {
        m_thread.start();
        m_instance = new SingleInstance(serverName);
        m_instance->moveToThread(&m_thread);
        QObject::connect(
            m_instance, &SingleInstance::commandLineReceived, m_instance,
            [this](const QStringList& arguments) {
                const QMutexLocker lock(&m_mutex);
                m_received << arguments;
            },
            Qt::DirectConnection);
        inThread([this] { m_listening = m_instance->listen(); });
    }
    ~RunningCopy() {
        inThread([this] { delete m_instance; });
        m_thread.quit();
        m_thread.wait();
    }

    bool listening() const { return m_listening; }
    // The command lines handed over so far, after waiting up to a second for
    // the expected number.
    QList<QStringList> received(qsizetype expected) {
        for (int i = 0; i < 100 && count() < expected; ++i)
            QTest::qWait(10);
        const QMutexLocker lock(&m_mutex);
        return m_received;
    }

private:
    template <typename Work> void inThread(Work work) {
        QMetaObject::invokeMethod(m_instance, work, Qt::BlockingQueuedConnection);
    }
    qsizetype count() {
        const QMutexLocker lock(&m_mutex);
        return m_received.size();
    }

    QThread m_thread;
    SingleInstance* m_instance = nullptr;
    bool m_listening = false;
    QMutex m_mutex;
    QList<QStringList> m_received;
};
