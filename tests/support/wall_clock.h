// A wall clock that a test sets for its own program and the library in it. The machine's clock stays
// unchanged. Linked into the program, it replaces the C library's clock_gettime, pthread_cond_timedwait,
// pthread_cond_signal and pthread_mutex_timedlock: a wait ends when the clock shows its deadline, as after a
// real setting of the clock. The loader searches the program first, so this works for a shared library too.
#ifndef TESTS_SUPPORT_WALL_CLOCK_H
#define TESTS_SUPPORT_WALL_CLOCK_H

#include <chrono>

namespace rolu_test {

// Sets the clock forward, or back if `by` is negative. Waiting threads notice it within a few milliseconds.
void MoveWallClock(std::chrono::seconds by);

// Makes the next look at the clock take this long. A wait whose deadline comes from that look begins that
// much later.
void PauseAtNextLook(std::chrono::milliseconds pause);

// How many threads now wait for a condition, or for a lock, until a time of the clock. They have read the
// clock for their deadline. A thread that gets the condition or the lock at once does not count.
int WaitsForConditions();
int WaitsForLocks();

}  // namespace rolu_test

#endif  // TESTS_SUPPORT_WALL_CLOCK_H
