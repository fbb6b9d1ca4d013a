#pragma once

#include "platform/Workers.h"

#include <QCoreApplication>

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
}
