#pragma once

#include <chrono>
#include <optional>

#include "simulator/mcu/time_point.h"

namespace rolu_sim {

// A condition that counts once it has held, without a break, for a delay; then once until it has
// ended and begun again.
class HeldCondition {
 public:
  // Call it whenever the condition may have changed.
  void Follow(bool holds, TimePoint now) {
    if (!holds) {
      since_.reset();
      taken_ = false;
    } else if (!since_) {
      since_ = now;
    }
  }

  std::optional<TimePoint> Due(std::chrono::seconds delay) const {
    if (!since_ || taken_) return std::nullopt;
    return *since_ + delay;
  }

  // Whether the delay has passed; true only once.
  bool TakeDue(std::chrono::seconds delay, TimePoint now) {
    const std::optional<TimePoint> due = Due(delay);
    if (!due || *due > now) return false;
    taken_ = true;
    return true;
  }

 private:
  std::optional<TimePoint> since_;
  bool taken_ = false;
};

}  // namespace rolu_sim
