#include "soak/process_usage.h"

#include <malloc.h>
#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string_view>

namespace rolu_soak {
namespace {

std::size_t CountEntries(const char* directory) {
  return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(directory), {}));
}

std::size_t ResidentBytes() {
  std::size_t size_pages = 0;
  std::size_t resident_pages = 0;
  std::ifstream("/proc/self/statm") >> size_pages >> resident_pages;
  return resident_pages * static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

constexpr char kTunablesVariable[] = "GLIBC_TUNABLES";
constexpr char kOneArenaWithoutCaches[] = "glibc.malloc.tcache_count=0:glibc.malloc.arena_max=1";

}  // namespace

ProcessUsage MeasureProcess() {
  const struct mallinfo2 heap = mallinfo2();
  return {CountEntries("/proc/self/fd"), CountEntries("/proc/self/task"), heap.uordblks + heap.hblkhd,
          ResidentBytes()};
}

void CountHeapExactly() {
  setenv(kTunablesVariable, kOneArenaWithoutCaches, 0);
}

bool HeapIsCountedExactly() {
  const char* const tunables = getenv(kTunablesVariable);
  return tunables != nullptr && std::string_view(tunables) == kOneArenaWithoutCaches;
}

}  // namespace rolu_soak
