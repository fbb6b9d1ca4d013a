#pragma once

#include <QtGlobal>

// Keeps the resident size flat: without it the allocator moves its threshold for large blocks with
// every freed picture, keeps them, and the process grows by luck. Call first in main().
void settleAllocator();

// For a program that does one thing and ends: what it frees stays at hand. Paging the memory of
// each picture in anew takes a tenth of an export's processor time.
void keepFreedMemory();

// The largest resident size of this process so far, in bytes; 0 where the system does not tell.
qint64 peakMemory();

// Gives what was freed back to the system, from between what is in use too. A few milliseconds.
void releaseFreedMemory();
