#ifndef SOAK_PROCESSOR_WAITS_H
#define SOAK_PROCESSOR_WAITS_H

#include <chrono>
#include <map>

namespace rolu_soak {

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

#endif  // SOAK_PROCESSOR_WAITS_H
