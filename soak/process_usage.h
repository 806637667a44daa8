#pragma once

#include <chrono>
#include <cstddef>
#include <map>

namespace rolu_soak {

#ifdef ROLU_SANITIZED
inline constexpr bool kMemoryIsMeasured = false;
#else
inline constexpr bool kMemoryIsMeasured = true;
#endif

// What this process holds.
struct ProcessUsage {
  std::size_t descriptors = 0;
  std::size_t threads = 0;
  std::size_t heap_bytes = 0;      // allocated and not freed
  std::size_t resident_bytes = 0;  // memory pages in use
};

ProcessUsage MeasureProcess();

// How much more the process may hold at the end than at the start.
ProcessUsage TolerableGrowth();

// For the program that this one runs next: what the allocator's thread caches hold would count as allocated,
// and so would the head of each further arena, which threads that meet at the allocator get.
void CountHeapExactly();

// How long each thread of this process has been ready to run and waited for a processor so far, as the
// kernel counts it. Empty where the kernel does not.
using ProcessorWaits = std::map<int, std::chrono::nanoseconds>;

ProcessorWaits MeasureProcessorWaits();

// The longest that one thread has waited between the two measurements.
std::chrono::nanoseconds LongestWait(const ProcessorWaits& before, const ProcessorWaits& after);

// Three threads bring an answer: the caller's, the library's and the simulated MCU's. An answer misses
// its 3000 ms only when they waited for a processor for 1500 ms together, since no answer that is meant to
// arrive is delayed by more than the other 1500: one of them for this long at least. On a machine that
// is busy with other work that is no fault of the library's.
inline constexpr std::chrono::milliseconds kStarved{500};

}  // namespace rolu_soak
