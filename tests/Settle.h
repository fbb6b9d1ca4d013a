#pragma once

#include "platform/Workers.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QThread>
#include <QThreadPool>

#include <algorithm>

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
    QThreadPool::globalInstance()->waitForDone();
}

// When the application object is gone, and with it the toolkit's own pools: a thread that was
// waited for may still be on its way out, and what only it holds would count as leaked.
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
