#pragma once

#include "platform/Workers.h"

#include <QCoreApplication>
#include <QDir>
#include <QThread>

// Lets coroutines that a test left behind come to their end: what is still under way when the event
// loop goes would count as leaked.
inline void settleWorkers()
{
    for (int turn = 0; turn < 20; ++turn) {
        workers().waitForDone();
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    finishWorkers();
    // A thread that is waited for may still be on its way out, and what only it holds would count
    // as leaked too.
    const QDir threads(QStringLiteral("/proc/self/task"));
    for (int turn = 0;
         turn < 100 && threads.entryList(QDir::Dirs | QDir::NoDotAndDotDot).size() > 1; ++turn)
        QThread::msleep(2);
}
