#pragma once

#include <QtGlobal>

// Fixes the allocator's thresholds, so that freed pictures go back to the system. By default, glibc
// raises its threshold for large blocks whenever it frees one, and then holds on to freed pictures.
// Call this first in main().
void fixAllocatorThresholds();

// Makes the process hold on to freed memory. For a program that does one thing and ends: getting
// memory for each picture from the system again would take a tenth of the processor time of an
// export.
void keepFreedMemory();

// The memory of this machine in bytes; 0 if the system does not report it.
qint64 totalMemory();

// The largest resident size of this process so far, in bytes; 0 if the system does not report it.
qint64 peakMemory();

// Gives freed memory back to the system, even if it lies between blocks in use. Takes a few
// milliseconds.
void releaseFreedMemory();
