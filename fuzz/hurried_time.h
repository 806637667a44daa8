// Stands in for the library's clock work (core/deadline.h): the fuzzer has no time to wait. Nothing is
// slept, and the wait for a reply that will not come ends when its command has been received.
#ifndef FUZZ_HURRIED_TIME_H
#define FUZZ_HURRIED_TIME_H

#include <atomic>

namespace rolu_fuzz {

// Ends the next wait. Until then waits last as long as the library says, however busy the machine is.
extern std::atomic<bool> time_is_up;

// What the library wanted to sleep since this was last set to 0.
extern std::atomic<int> slept_ms;

}  // namespace rolu_fuzz

#endif  // FUZZ_HURRIED_TIME_H
