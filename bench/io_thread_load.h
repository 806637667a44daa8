#pragma once

#include <chrono>

namespace rolu_bench {

struct IoThreadLoad {
  double wakeups_per_second = 0.0;  // voluntary context switches
  double processor_percent = 0.0;   // of one processor
};

// What the library's I/O thread costs while this thread sleeps for `duration`. The link is open, and
// no other thread runs. Throws std::runtime_error when the thread is not there to be measured.
IoThreadLoad MeasureIoThreadLoad(std::chrono::milliseconds duration);

}  // namespace rolu_bench
