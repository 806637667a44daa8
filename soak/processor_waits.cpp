#include "soak/processor_waits.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

namespace rolu_soak {

ProcessorWaits MeasureProcessorWaits() {
  ProcessorWaits waits;
  // A thread may end meanwhile.
  std::error_code error;
  const std::filesystem::directory_iterator end;
  for (std::filesystem::directory_iterator entry("/proc/self/task", error); !error && entry != end;
       entry.increment(error)) {
    long long ran_ns = 0;
    long long waited_ns = 0;
    if (std::ifstream(entry->path() / "schedstat") >> ran_ns >> waited_ns) {
      waits[std::stoi(entry->path().filename())] = std::chrono::nanoseconds(waited_ns);
    }
  }
  return waits;
}

std::chrono::nanoseconds LongestWait(const ProcessorWaits& before, const ProcessorWaits& after) {
  std::chrono::nanoseconds longest{0};
  for (const auto& [thread, waited] : after) {
    const auto earlier = before.find(thread);
    longest = std::max(longest, earlier == before.end() ? waited : waited - earlier->second);
  }
  return longest;
}

}  // namespace rolu_soak
