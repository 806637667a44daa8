#pragma once

#include <cstdint>
#include <random>

namespace rolu_soak {

// Random choices, the same for the same seed. Not the standard library's distribution, which may differ
// between its versions.
class Dice {
 public:
  explicit Dice(std::uint32_t seed) : random_(seed) {}

  // 0 to `limit` - 1.
  std::uint32_t Below(std::size_t limit) { return static_cast<std::uint32_t>(random_() % limit); }

 private:
  std::mt19937 random_;
};

}  // namespace rolu_soak
