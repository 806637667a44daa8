#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "bench/loaded_size.h"
#include "bench/mcu_process.h"
#include "bench/measurements.h"
#include "bench/peers/peer.h"

namespace rolu_bench {

struct ComparisonEffort {
  int rounds;  // in which the peers take turns, so that all meet the machine's changing load
  int quiet_asks_per_round;
  int asks_per_burst;
  std::chrono::milliseconds idle_duration;
};

// The figures of one peer.
struct PeerFigures {
  std::string name;
  // One question on a line that was left alone, and its processor time in all threads of the program. That
  // time includes the work that the question leaves behind, but not the pause before the question.
  Samples quiet_us;
  Samples quiet_processor_us;
  // One of many questions that follow right after each other.
  Samples burst_us_per_ask;
  double burst_seconds = 0;  // of all these questions
  Samples burst_processor_us;
  double idle_wakeups_per_second = 0;
  double allocations_per_ask = 0;
  LoadedSize loaded;
};

// Measures all peers against one MCU on one pseudo-terminal. `tell_progress` gets how many rounds are done,
// and of how many. Throws std::exception when a peer fails.
std::vector<PeerFigures> Compare(const ComparisonEffort& effort, const McuProcess& mcu,
                                 const std::function<void(int done, int all)>& tell_progress);

}  // namespace rolu_bench
