#include "core/deadline.h"
#include "fuzz/stand_ins.h"

namespace rolu_fuzz {
std::atomic<bool> time_is_up{false};
std::atomic<int> slept_ms{0};
}  // namespace rolu_fuzz

namespace {

timespec Now(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return time;
}

// Rounds up to whole seconds, which is exact enough.
timespec TimeAfter(clockid_t clock, unsigned long ms) {
  timespec time = Now(clock);
  time.tv_sec += static_cast<time_t>(ms / 1000 + 1);
  return time;
}

}  // namespace

timespec WallClockDeadline(unsigned long ms) {
  return TimeAfter(CLOCK_REALTIME, ms);
}

bool HasPassed(const timespec& deadline) {
  return rolu_fuzz::time_is_up.exchange(false) || Now(CLOCK_REALTIME).tv_sec > deadline.tv_sec;
}

timespec MonotonicDeadline(unsigned long ms) {
  return TimeAfter(CLOCK_MONOTONIC, ms);
}

bool HasPassedMonotonic(const timespec& deadline) {
  return Now(CLOCK_MONOTONIC).tv_sec > deadline.tv_sec;
}

void SleepForMs(int ms) {
  if (ms > 0) rolu_fuzz::slept_ms += ms;
}

long long MonotonicUs() {
  const timespec now = Now(CLOCK_MONOTONIC);
  return static_cast<long long>(now.tv_sec) * 1000000 + now.tv_nsec / 1000;
}
