#include "tests/support/wall_clock.h"

#include <pthread.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <thread>

namespace {

constexpr long long kNsPerSecond = 1000000000;
constexpr long long kSliceNs = 2000000;

std::atomic<long long> moved_by_s{0};
std::atomic<long long> pause_at_next_look_ms{0};
std::atomic<unsigned> signals{0};
std::atomic<int> waits_for_conditions{0};
std::atomic<int> waits_for_locks{0};

timespec MachineTime(clockid_t clock) {
  timespec time{};
  syscall(SYS_clock_gettime, clock, &time);
  return time;
}

bool WallClockShows(const timespec& deadline) {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return now.tv_sec > deadline.tv_sec || (now.tv_sec == deadline.tv_sec && now.tv_nsec >= deadline.tv_nsec);
}

timespec EndOfSlice() {
  timespec end = MachineTime(CLOCK_MONOTONIC);
  const long long ns = end.tv_nsec + kSliceNs;
  end.tv_sec += static_cast<time_t>(ns / kNsPerSecond);
  end.tv_nsec = static_cast<long>(ns % kNsPerSecond);
  return end;
}

// Waits in slices by a clock that nobody sets, and looks at the wall clock between them.
template <typename WaitUntil>
int WaitInSlices(const timespec& deadline, std::atomic<int>& waits, WaitUntil wait_until) {
  int result = wait_until(EndOfSlice());
  if (result != ETIMEDOUT) return result;
  ++waits;
  while (result == ETIMEDOUT && !WallClockShows(deadline)) result = wait_until(EndOfSlice());
  --waits;
  return result;
}

}  // namespace

void rolu_test::MoveWallClock(std::chrono::seconds by) {
  moved_by_s += by.count();
}

void rolu_test::PauseAtNextLook(std::chrono::milliseconds pause) {
  pause_at_next_look_ms = pause.count();
}

int rolu_test::WaitsForConditions() {
  return waits_for_conditions;
}

int rolu_test::WaitsForLocks() {
  return waits_for_locks;
}

extern "C" int clock_gettime(clockid_t clock, timespec* time) noexcept {
  *time = MachineTime(clock);
  if (clock != CLOCK_REALTIME) return 0;
  const std::chrono::milliseconds pause(pause_at_next_look_ms.exchange(0));
  if (pause.count() > 0) std::this_thread::sleep_for(pause);
  time->tv_sec += static_cast<time_t>(moved_by_s);
  return 0;
}

extern "C" int pthread_cond_timedwait(pthread_cond_t* condition, pthread_mutex_t* mutex,
                                      const timespec* deadline) {
  // A signal that comes between two slices finds nobody waiting. The wait then ends as by a wake-up without a
  // reason, so that the caller looks again.
  return WaitInSlices(*deadline, waits_for_conditions, [=, seen = signals.load()](const timespec& end) {
    return signals == seen ? pthread_cond_clockwait(condition, mutex, CLOCK_MONOTONIC, &end) : 0;
  });
}

extern "C" int pthread_cond_signal(pthread_cond_t* condition) noexcept {
  ++signals;
  return pthread_cond_broadcast(condition);
}

extern "C" int pthread_mutex_timedlock(pthread_mutex_t* mutex, const timespec* deadline) noexcept {
  return WaitInSlices(*deadline, waits_for_locks, [=](const timespec& end) {
    return pthread_mutex_clocklock(mutex, CLOCK_MONOTONIC, &end);
  });
}
