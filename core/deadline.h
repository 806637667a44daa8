#ifndef CORE_DEADLINE_H
#define CORE_DEADLINE_H

#include <time.h>

// The wall-clock time `ms` milliseconds from now, as timed locks and condition waits take it, and whether
// the clock has reached it.
timespec WallClockDeadline(unsigned long ms);
bool HasPassed(const timespec& deadline);

// The same on the monotonic clock.
timespec MonotonicDeadline(unsigned long ms);
bool HasPassedMonotonic(const timespec& deadline);

// Sleeps the whole time, whatever signals arrive and however the wall clock is set; 0 or less does
// not sleep.
void SleepForMs(int ms);

// Microseconds of the monotonic clock; only differences have a meaning.
long long MonotonicUs();

#endif  // CORE_DEADLINE_H
