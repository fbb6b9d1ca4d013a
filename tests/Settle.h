#pragma once

#include "platform/Workers.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QThread>
#include <QThreadPool>

#include <algorithm>

// Ends coroutines that a test left running: those still suspended when the event loop is destroyed
// would count as leaks.
inline void settleWorkers()
{
    for (int turn = 0; turn < 20; ++turn) {
        workers().waitForDone();
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    finishWorkers();
    QThreadPool::globalInstance()->waitForDone();
}

// Waits until the threads of all pools have exited; call it after the application object is
// destroyed. A thread that was joined may still be exiting, and memory that only it refers to would
// count as a leak.
inline void letThreadsGo()
{
    const auto isPooled = [](const QFileInfo& thread) {
        QFile name(thread.filePath() + QStringLiteral("/comm"));
        const QByteArray text = name.open(QIODevice::ReadOnly) ? name.readAll().trimmed() : "";
        return text == workerThreadName || text == "Thread (pooled)";
    };
    const QString threads = QStringLiteral("/proc/self/task");
    for (int turn = 0; turn < 5000; ++turn) {
        if (std::ranges::none_of(QDir(threads).entryInfoList(), isPooled))
            return;
        QThread::msleep(2);
    }
}
