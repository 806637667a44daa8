#include "vpm/voltage_scale.h"

#include <limits>

namespace {

// The board's processor saturates a value out of range; in C++, and on the desk, its conversion is undefined.
uint32_t SaturatingTruncate(double value) {
  if (!(value > 0.0)) return 0;
  constexpr uint32_t kLargest = std::numeric_limits<uint32_t>::max();
  return value < static_cast<double>(kLargest) ? static_cast<uint32_t>(value) : kLargest;
}

}  // namespace

uint16_t VoltsToRaw(float volts, float scale) {
  const float units = volts / scale;
  return static_cast<uint16_t>(SaturatingTruncate(static_cast<double>(units) + 0.5));
}
