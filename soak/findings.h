#pragma once

#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace rolu_soak {

// What is wrong with a call.
struct Fault {
  // However long threads waited for a processor.
  static constexpr std::chrono::nanoseconds kUnexplained = std::chrono::nanoseconds::max();

  std::string text;  // empty: nothing is wrong
  // A thread that was ready to run, and waited so long for a processor meanwhile, explains it.
  std::chrono::nanoseconds explained_by = kUnexplained;
};

// What was found of one kind: the first ones in words, all of them counted. It has its whole size from the
// start: what is found must not look like memory that is lost. Any thread may call any member.
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

}  // namespace rolu_soak
