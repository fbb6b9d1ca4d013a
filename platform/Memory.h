#pragma once

#include <QtGlobal>

// Fixes the allocator's thresholds, which keeps the resident size flat: otherwise glibc raises its
// threshold for large blocks with every freed picture, and keeps the freed ones. Call first in
// main().
void fixAllocatorThresholds();

// Keeps freed memory in the process, for a program that does one thing and ends: paging the memory
// of each picture in anew takes a tenth of an export's processor time.
void keepFreedMemory();

// The largest resident size of this process so far, in bytes; 0 where the system does not tell.
qint64 peakMemory();

// Gives freed memory back to the system, also from between blocks in use. Takes a few milliseconds.
void releaseFreedMemory();
