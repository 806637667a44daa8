#pragma once

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "include/kavo_rolu.h"
#include "tests/oracle/made_call.h"

namespace rolu_soak {

// What is wrong with a call.
struct Fault {
  // No wait for a processor explains the fault.
  static constexpr std::chrono::nanoseconds kUnexplained = std::chrono::nanoseconds::max();

  std::string text;  // empty: nothing is wrong
  // A thread that was ready to run, and waited this long for a processor meanwhile, explains the fault.
  std::chrono::nanoseconds explained_by = kUnexplained;
};

// Findings of one kind: counts all of them and keeps the first ones in words. It has its full size from the
// start, so that a finding does not look like lost memory. Any thread may call any member.
class Findings {
 public:
  static constexpr std::size_t kKept = 20;

  Findings() {
    for (std::string& text : kept_) text.reserve(kLongest);
  }
  void Add(std::string_view what) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (count_ < kKept) kept_.at(count_).assign(what.substr(0, kLongest));
    ++count_;
  }
  std::size_t count() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return count_;
  }
  std::vector<std::string> Kept() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return {kept_.begin(), kept_.begin() + static_cast<std::ptrdiff_t>(std::min(count_, kKept))};
  }

 private:
  static constexpr std::size_t kLongest = 1000;

  mutable std::mutex mutex_;
  std::size_t count_ = 0;
  std::array<std::string, kKept> kept_;
};

// A command that reached the MCU, and the line that answers it; nothing where no such line comes.
struct Exchange {
  std::string command;
  std::optional<std::string> reply;
};

// A call that has returned, and the circumstances.
struct CallFacts {
  const rolu_test::CallRow* row = nullptr;
  ROLU_STATUS status = ROLU_STATUS_SUCCESS;
  rolu_test::OutputMemory output = rolu_test::MemoryWith({});
  std::vector<Exchange> exchanges = {};
  bool family_was_up = true;
  bool port_was_dead = false;  // for some of the time
  bool link_was_busy = false;  // an Initialize waited for the link as long as it promises
};

// Why the call must not have ended like this, by the tests' own reading of the MCU's answers. A thread's wait
// for a processor can explain that an answer or a link was missed without a cause; it never explains a wrong
// answer.
Fault FaultIn(const CallFacts& facts);

// Gives the tables behind FaultIn their full size, since the soak compares the process's memory.
void PrepareJudgement();

// "VPM_NO_REPLY".
std::string StatusText(ROLU_STATUS status);

// How many of the calls may be excused. An excused call says nothing about the library. A machine that gives
// the threads too little time for more than a thousandth of their calls cannot judge it. A moment without a
// processor meets one call of each thread: a short run has to stand one such moment.
std::uint64_t ExcusableCalls(std::uint64_t calls);

}  // namespace rolu_soak
