#pragma once

#include "platform/Workers.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QThread>

inline int pooledThreads()
{
    int count = 0;
    for (const QFileInfo& thread : QDir(QStringLiteral("/proc/self/task")).entryInfoList()) {
        QFile name(thread.filePath() + QStringLiteral("/comm"));
        count += name.open(QIODevice::ReadOnly) && name.readAll().trimmed() == "Thread (pooled)";
    }
    return count;
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
    // as leaked too; others, of the toolkit's own pools, stay for a while.
    constexpr int longEnough = 25;    // turns without one less
    int count = pooledThreads();
    for (int quiet = 0; count > 0 && quiet < longEnough; ++quiet) {
        QThread::msleep(2);
        if (const int now = pooledThreads(); now < count) {
            count = now;
            quiet = 0;
        }
    }
}
