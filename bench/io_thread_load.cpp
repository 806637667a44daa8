#include "bench/io_thread_load.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "bench/thread_counters.h"

namespace rolu_bench {
namespace {

// The directory in /proc of the one thread besides the main one.
std::filesystem::path OtherThread() {
  const std::vector<std::filesystem::path> others = OtherThreads();
  if (others.size() != 1) {
    throw std::runtime_error("expected one thread of the library, found " + std::to_string(others.size()));
  }
  return others.front();
}

double OtherThreadsSeconds() {
  return Seconds(CLOCK_PROCESS_CPUTIME_ID) - Seconds(CLOCK_THREAD_CPUTIME_ID);
}

}  // namespace

IoThreadLoad MeasureIoThreadLoad(std::chrono::milliseconds duration) {
  const std::filesystem::path thread = OtherThread();
  const std::uint64_t switches_before = VoluntarySwitches(thread);
  const double processor_before = OtherThreadsSeconds();
  const double start = Seconds(CLOCK_MONOTONIC);
  std::this_thread::sleep_for(duration);
  const double elapsed = Seconds(CLOCK_MONOTONIC) - start;
  // The two clocks are not read at the same moment.
  const double processor = std::max(OtherThreadsSeconds() - processor_before, 0.0);
  const std::uint64_t switches = VoluntarySwitches(thread) - switches_before;
  return {static_cast<double>(switches) / elapsed, 100.0 * processor / elapsed};
}

}  // namespace rolu_bench
