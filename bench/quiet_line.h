#pragma once

#include <chrono>
#include <thread>

namespace rolu_bench {

// Waits for more than the 10 ms after which a line is quiet. Each `turn` ends in another phase of the
// library's 5 ms poll.
inline void LeaveLineQuiet(int turn) {
  std::this_thread::sleep_for(std::chrono::milliseconds(11) + turn % 8 * std::chrono::microseconds(700));
}

}  // namespace rolu_bench
