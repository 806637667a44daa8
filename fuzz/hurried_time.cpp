#include "fuzz/hurried_time.h"

#include <chrono>

#include "core/deadline.h"

namespace rolu_fuzz {
std::atomic<bool> time_is_up{false};
std::atomic<int> slept_ms{0};
}  // namespace rolu_fuzz

timespec WallClockDeadline(unsigned long ms) {
  const auto deadline = (std::chrono::system_clock::now() + std::chrono::milliseconds(ms)).time_since_epoch();
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(deadline);
  timespec time{};
  time.tv_sec = static_cast<time_t>(seconds.count());
  time.tv_nsec = static_cast<long>(std::chrono::nanoseconds(deadline - seconds).count());
  return time;
}

bool HasPassed(const timespec& deadline) {
  if (rolu_fuzz::time_is_up.exchange(false)) return true;
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  if (now.tv_sec != deadline.tv_sec) return now.tv_sec > deadline.tv_sec;
  return now.tv_nsec >= deadline.tv_nsec;
}

timespec MonotonicDeadline(unsigned long ms) {
  timespec time{};
  clock_gettime(CLOCK_MONOTONIC, &time);
  time.tv_sec += static_cast<time_t>(ms / 1000 + 1);
  return time;
}

bool HasPassedMonotonic(const timespec& deadline) {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return now.tv_sec > deadline.tv_sec;
}

void SleepForMs(int ms) {
  if (ms > 0) rolu_fuzz::slept_ms += ms;
}

long long MonotonicUs() {
  using std::chrono::microseconds;
  return std::chrono::duration_cast<microseconds>(std::chrono::steady_clock::now().time_since_epoch())
      .count();
}
