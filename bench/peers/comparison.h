#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "bench/mcu_process.h"
#include "bench/measurements.h"
#include "bench/peers/loaded_size.h"
#include "bench/peers/peer.h"

namespace rolu_bench {

struct ComparisonEffort {
  int rounds;  // in which the peers take turns, so that all meet the machine's changing load
  int quiet_asks_per_round;
  int asks_per_burst;
  std::chrono::milliseconds idle_duration;
};

// What was found of one peer.
struct PeerFigures {
  std::string name;
  Samples quiet_us;              // one question on a line that was left alone
  Samples burst_us_per_ask;      // one of many questions, one right after the other
  double burst_seconds = 0;      // of all of those
  Samples processor_us_per_ask;  // of those, in all threads of the program
  double idle_wakeups_per_second = 0;
  double allocations_per_ask = 0;
  LoadedSize loaded;
};

// Measures all peers against one MCU on one pseudo-terminal. `tell_progress` gets what is done, of
// how much. Throws std::exception when a peer fails.
std::vector<PeerFigures> Compare(const ComparisonEffort& effort, const McuProcess& mcu,
                                 const std::function<void(int done, int all)>& tell_progress);

}  // namespace rolu_bench
