// A wall clock that a test sets, for this program and the library in it; the machine's clock stays as it
// is. Linked into the program, it stands in for the C library's clock_gettime, pthread_cond_timedwait and
// pthread_mutex_timedlock: as with a clock that is set, a wait ends when the clock shows its deadline. The
// loader looks into the program first, so that it does so for a shared library, too.
#ifndef TESTS_SUPPORT_WALL_CLOCK_H
#define TESTS_SUPPORT_WALL_CLOCK_H

#include <chrono>

namespace rolu_test {

// Sets the clock forward; back if `by` is negative. A wait learns of it within a few milliseconds.
void MoveWallClock(std::chrono::seconds by);

// The next look at the clock takes this long: the wait whose deadline it is for begins so much later.
void PauseAtNextLook(std::chrono::milliseconds pause);

// How many threads now wait for a condition, or for a lock, until a time of the clock: their deadlines
// are taken. What was to be had at once does not count.
int WaitsForConditions();
int WaitsForLocks();

}  // namespace rolu_test

#endif  // TESTS_SUPPORT_WALL_CLOCK_H
