#include "core/deadline.h"

#include <cerrno>

namespace {

constexpr long kNanosecondsPerSecond = 1000000000L;

timespec TimeAfter(clockid_t clock, unsigned long ms) {
  timespec time;
  clock_gettime(clock, &time);
  time.tv_sec += static_cast<time_t>(ms / 1000);
  time.tv_nsec += static_cast<long>(ms % 1000) * 1000000L;
  if (time.tv_nsec >= kNanosecondsPerSecond) {
    time.tv_sec += 1;
    time.tv_nsec -= kNanosecondsPerSecond;
  }
  return time;
}

bool Shows(clockid_t clock, const timespec& deadline) {
  timespec now;
  clock_gettime(clock, &now);
  if (now.tv_sec != deadline.tv_sec) return now.tv_sec > deadline.tv_sec;
  return now.tv_nsec >= deadline.tv_nsec;
}

}  // namespace

timespec WallClockDeadline(unsigned long ms) {
  return TimeAfter(CLOCK_REALTIME, ms);
}

bool HasPassed(const timespec& deadline) {
  return Shows(CLOCK_REALTIME, deadline);
}

timespec MonotonicDeadline(unsigned long ms) {
  return TimeAfter(CLOCK_MONOTONIC, ms);
}

bool HasPassedMonotonic(const timespec& deadline) {
  return Shows(CLOCK_MONOTONIC, deadline);
}

void SleepForMs(int ms) {
  if (ms <= 0) return;
  const timespec end = MonotonicDeadline(static_cast<unsigned long>(ms));
  while (clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &end, nullptr) == EINTR) {
  }
}

long long MonotonicUs() {
  timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return static_cast<long long>(now.tv_sec) * 1000000 + now.tv_nsec / 1000;
}
