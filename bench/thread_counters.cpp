#include "bench/thread_counters.h"

#include <unistd.h>

#include <fstream>
#include <stdexcept>
#include <string>

namespace rolu_bench {

std::vector<std::filesystem::path> OtherThreads() {
  std::vector<std::filesystem::path> others;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task")) {
    if (entry.path().filename() != std::to_string(getpid())) others.push_back(entry.path());
  }
  return others;
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

}  // namespace rolu_bench
