// Looking at this process from outside, and waiting for it to come to a state.
#ifndef TESTS_SUPPORT_PROCESS_STATE_H
#define TESTS_SUPPORT_PROCESS_STATE_H

#include <chrono>
#include <filesystem>
#include <iterator>
#include <thread>

// No machine is so loaded that something which happens at all takes this long.
inline constexpr std::chrono::seconds kGenerous{20};

// Waits for what has no event of its own; false when it has not come about in a generous time.
template <typename Condition>
bool WaitUntil(Condition condition) {
  const auto end = std::chrono::steady_clock::now() + kGenerous;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

inline std::ptrdiff_t CountEntries(const char* directory) {
  return std::distance(std::filesystem::directory_iterator(directory), {});
}

// What is open and what runs in this process. Let go of something, the count may fall a moment later:
// compare with WaitUntil.
struct ProcessState {
  std::ptrdiff_t descriptors = CountEntries("/proc/self/fd");
  std::ptrdiff_t threads = CountEntries("/proc/self/task");
  bool operator==(const ProcessState& other) const {
    return descriptors == other.descriptors && threads == other.threads;
  }
};

#endif  // TESTS_SUPPORT_PROCESS_STATE_H
