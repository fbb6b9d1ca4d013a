#pragma once

#include <QCoreApplication>

#include <functional>

// Calls `end` on the application's thread when the system or the user wants the program to end; a
// second signal ends it at once. Signals that whoever started it wants ignored stay so.
void onEndingSignals(QCoreApplication& application, const std::function<void()>& end);
