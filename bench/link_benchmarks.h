#pragma once

#include <chrono>

#include "bench/measurements.h"
#include "simulator/devices/board_root.h"

namespace rolu_bench {

struct Effort {
  int rounds;           // in which bare round trips and queries take turns
  int counted_queries;  // for the allocations
  int closes;
  std::chrono::milliseconds load_duration;
};

inline constexpr Effort kFullEffort{40, 200, 50, std::chrono::milliseconds(2000)};
inline constexpr Effort kQuickEffort{8, 50, 20, std::chrono::milliseconds(500)};

// Registers the benchmarks. They run against the board at `root`, which the environment names too, and add
// their figures to `found`. Both must outlive the run.
void RegisterLinkBenchmarks(const Effort& effort, const rolu_sim::BoardRoot& root, Measurements& found);

}  // namespace rolu_bench
