#pragma once

#include <QCoreApplication>

#include <functional>

// Calls `end` on the application's thread on SIGINT, SIGTERM or SIGHUP; the second signal of a kind
// kills the program at once. A signal that the parent process set to be ignored stays ignored.
void onEndingSignals(QCoreApplication& application, const std::function<void()>& end);
