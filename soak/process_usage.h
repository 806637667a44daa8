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

// Sets the allocator of the program that this one runs next. Without it, the pieces in the allocator's thread
// caches would count as allocated, and so would the head of each arena that threads get when they meet at the
// allocator.
void CountHeapExactly();

// How long each thread of this process has been ready to run and waited for a processor so far, as the
// kernel counts it. Empty where the kernel does not.
using ProcessorWaits = std::map<int, std::chrono::nanoseconds>;

ProcessorWaits MeasureProcessorWaits();

// The longest that one thread has waited between the two measurements.
std::chrono::nanoseconds LongestWait(const ProcessorWaits& before, const ProcessorWaits& after);

// Three threads bring an answer: the caller's, the library's and the simulated MCU's. No answer that is meant
// to arrive is delayed by more than 1500 ms. So it misses its 3000 ms only when these threads waited for a
// processor for 1500 ms together, one of them for this long at least. On a machine that is busy with other
// work that is not the library's fault.
inline constexpr std::chrono::milliseconds kStarved{500};

}  // namespace rolu_soak
