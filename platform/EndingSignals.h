#pragma once

#include <QCoreApplication>

#include <functional>

// Calls `end` on the application's thread after SIGINT, SIGTERM or SIGHUP. The same signal a second
// time kills the program at once. A signal that was ignored when the program started stays ignored.
void onEndingSignals(QCoreApplication& application, const std::function<void()>& end);
