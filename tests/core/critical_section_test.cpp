#include "core/critical_section.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace {

using std::chrono::milliseconds;

// The result in another thread. Checks that a wait that timed out took its time.
int TimeLockElsewhere(CCriticalSection& section, unsigned long ms) {
  int result = 0;
  std::thread([&]() NO_THREAD_SAFETY_ANALYSIS {
    const auto start = std::chrono::system_clock::now();
    result = section.TimeLock(ms);
    if (result == 0) section.Unlock();
    if (result == -1) {
      EXPECT_GE(std::chrono::system_clock::now() - start, milliseconds(ms));
    }
  }).join();
  return result;
}

TEST(CriticalSection, TimeLockTakesAFreeLockAndGivesUpOnAHeldOne) {
  // 999 ms carry into the next second at almost any time of the clock.
  for (const unsigned long ms : {0UL, 20UL, 999UL, 1001UL}) {
    CCriticalSection section;
    EXPECT_EQ(TimeLockElsewhere(section, ms), 0) << ms;
    const ScopedLock held(section);
    EXPECT_EQ(TimeLockElsewhere(section, ms), -1) << ms;
  }
}

TEST(CriticalSection, IsHeldUntilItIsUnlockedAsOftenAsItWasLocked) NO_THREAD_SAFETY_ANALYSIS {
  CCriticalSection section;
  section.Lock();
  EXPECT_EQ(section.TimeLock(0), 0);
  section.Unlock();
  EXPECT_EQ(TimeLockElsewhere(section, 0), -1);
  section.Unlock();
  EXPECT_EQ(TimeLockElsewhere(section, 0), 0);
}

}  // namespace
