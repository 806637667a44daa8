#pragma once

#include <chrono>
#include <optional>
#include <vector>

namespace rolu {

// How fast the MCU answers.
class Latency {
 public:
  void AddAnswer(std::chrono::microseconds time) { times_.push_back(time); }
  void AddLoss() { ++lost_; }

  std::size_t answered() const { return times_.size(); }
  std::size_t lost() const { return lost_; }

  // The time within which `percent` per cent of the answers came (nearest rank); 0 is the shortest,
  // 100 the longest. There must be answers.
  std::chrono::microseconds Percentile(unsigned percent) const;

 private:
  std::vector<std::chrono::microseconds> times_;
  std::size_t lost_ = 0;
};

// Asks the MCU `questions` times for its platform's name, with a progress bar when standard error
// is a terminal. VPM must be up. Gives up after two losses in a row.
Latency MeasureLatency(unsigned questions);

}  // namespace rolu
