#pragma once

#include <atomic>

#include "simulator/devices/attribute.h"

namespace rolu_sim {

// The brightness of the display's backlight; any other text than a level is refused with EINVAL.
class Backlight : public Attribute {
 public:
  static constexpr int kHighestLevel = 10;

  Backlight() : Attribute(0644) {}

  int level() const { return level_; }
  void SetLevel(int level) { level_ = level; }

 private:
  std::string Show() override { return std::to_string(level_) + '\n'; }

  DeviceResult Store(std::string_view text) override {
    const int level = ParseKernelNumber(text, kHighestLevel);
    if (level < 0) return level;
    level_ = level;
    return 0;
  }

  std::atomic<int> level_{kHighestLevel};
};

}  // namespace rolu_sim
