#include "bench/io_thread_load.h"

#include <time.h>
#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace rolu_bench {
namespace {

// The directory in /proc of the one thread besides the main one.
std::filesystem::path OtherThread() {
  std::vector<std::filesystem::path> others;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task")) {
    if (entry.path().filename() != std::to_string(getpid())) others.push_back(entry.path());
  }
  if (others.size() != 1) {
    throw std::runtime_error("expected one thread of the library, found " + std::to_string(others.size()));
  }
  return others.front();
}

std::uint64_t VoluntarySwitches(const std::filesystem::path& thread) {
  const std::string key = "voluntary_ctxt_switches:";
  std::ifstream status(thread / "status");
  for (std::string line; std::getline(status, line);) {
    if (line.compare(0, key.size(), key) == 0) return std::stoull(line.substr(key.size()));
  }
  throw std::runtime_error("no count of context switches in " + (thread / "status").string());
}

double Seconds(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
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
  const double processor = OtherThreadsSeconds() - processor_before;
  const std::uint64_t switches = VoluntarySwitches(thread) - switches_before;
  return {static_cast<double>(switches) / elapsed, 100.0 * processor / elapsed};
}

}  // namespace rolu_bench
