#pragma once

#include "platform/Workers.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QThread>

inline bool hasWorkerThread()
{
    for (const QFileInfo& thread : QDir(QStringLiteral("/proc/self/task")).entryInfoList()) {
        QFile name(thread.filePath() + QStringLiteral("/comm"));
        if (name.open(QIODevice::ReadOnly) && name.readAll().trimmed() == workerThreadName)
            return true;
    }
    return false;
}

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
    for (int turn = 0; turn < 5000 && hasWorkerThread(); ++turn)
        QThread::msleep(2);
}
